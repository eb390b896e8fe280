// The report of a statement of 5,000 operations; the summary of thousands of statements, and how long windows
// wait for it between two events.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "common/progress.h"
#include "convert/check_xml.h"
#include "fixture.h"
#include "load/load_from_xml.h"
#include "platform/files.h"
#include "reports/get_files.h"
#include "reports/get_vipis.h"
#include "samples/generator.h"

namespace tav {
namespace {

void StatementReport(benchmark::State& state) {
    const bench::Folder folder;
    samples::StatementOptions options;
    options.rows = static_cast<int>(state.range(0));
    samples::WriteDocument(folder / u"in/", samples::MakeStatement(options));
    bench::NewDatabase(folder / u"base.mdb");
    LoadFromXml(CheckXml(folder / u"in/").catalogue, folder / u"base.mdb", options.taxpayer.inn,
                options.taxpayer.kpp, u"");
    for (auto _ : state) {
        const Text path = GetVipis(folder / u"base.mdb", 1, folder.path());
        if (path.empty()) std::abort();
        DeleteFile(path);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(StatementReport)->Arg(1250)->Arg(2500)->Arg(5000)->Unit(benchmark::kMillisecond);

class Gaps : public Progress {
 public:
    void ProcessEvents() override {
        const auto now = std::chrono::steady_clock::now();
        if (last_.time_since_epoch().count() != 0) longest_ = std::max(longest_, now - last_);
        last_ = now;
    }
    double longest() const { return std::chrono::duration<double, std::milli>(longest_).count(); }

 private:
    std::chrono::steady_clock::time_point last_;
    std::chrono::steady_clock::duration longest_{};
};

void StatementsSummary(benchmark::State& state) {
    const bench::Folder folder;
    bench::LoadManyFiles(folder, static_cast<int>(state.range(0)));
    Gaps gaps;
    const ScopedProgress scope(gaps);
    for (auto _ : state) {
        const samples::Taxpayer& taxpayer = samples::SampleTaxpayer();
        if (GetFiles(folder / u"base.mdb", taxpayer.inn, taxpayer.kpp, folder / u"out/").empty())
            std::abort();
        gaps.ProcessEvents();
    }
    state.counters["longest_gap_ms"] = gaps.longest();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(StatementsSummary)->Arg(1250)->Arg(2500)->Arg(5000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tav
