// The report of a statement of 5,000 operations.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "convert/check_xml.h"
#include "fixture.h"
#include "load/load_from_xml.h"
#include "platform/files.h"
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

}  // namespace
}  // namespace tav
