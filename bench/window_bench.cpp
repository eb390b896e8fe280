// The main window's list of the database: how long a refill takes, from the file to the screen. And how long the
// windows stand still at most, while documents are imported, listed, summed up and cleared.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>

#include "db/clearbase.h"
#include "db/connection.h"
#include "fixture.h"
#include "forms/forms.h"
#include "load/run_import.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "samples/generator.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/frmmain.h"
#include "ui/screen.h"

namespace tav {
namespace {

void WriteHeaders(TextView database, std::int64_t count) {
    bench::NewDatabase(database);
    Connection connection;
    connection.Open(ConnectionString(database));
    for (std::int64_t id = 1; id <= count; ++id) {
        SqlText sql(
            u"insert into tav_operations_header (id,vid,filename,h1,h2,h6,h7,h8,h10,perb,pere) values (");
        sql.Number(id)
            .Fixed(u",")
            .Number(id)
            .Fixed(u",'")
            .Value(Digits(id))
            .Fixed(
                u".rtf','1','2','x','18210101011011000110','Налог на прибыль','45286552000','01.01.2010',"
                u"'31.12.2010')");
        connection.Execute(sql);
    }
}

void RefillOfTheList(benchmark::State& state) {
    const bench::Folder folder;
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("TAV_SETTINGS", ToUtf8(folder / u"settings").c_str(), 1);
    UseDatabase(folder / u"PlX_Base.mdb");
    WriteHeaders(folder / u"PlX_Base.mdb", state.range(0));
    Taxpayer() = {u"1", u"2", {}};
    frmmain& window = Shared<frmmain>();
    window.Show();
    for (auto _ : state) {
        window.Refill();
        CurrentToolkit().ProcessEvents();
    }
    window.Unload();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(RefillOfTheList)->Arg(1250)->Arg(2500)->Arg(5000)->Unit(benchmark::kMillisecond);

// A timer of a form ticks every millisecond, as long as the event loop gets to it.
class Ticker : public FormEvents {
 public:
    Ticker() {
        window_->SetInterval(0, 1);
        CurrentToolkit().ProcessEvents();
    }
    void OnEvent(std::size_t, Event) override { Tick(); }
    void OnCloseRequest() override {}
    void Run(const std::function<void()>& work, benchmark::State& state, const char* name) {
        const Clock::time_point begin = last_ = Clock::now();
        longest_ = {};
        work();
        Tick();
        using Milliseconds = std::chrono::duration<double, std::milli>;
        state.counters[std::string(name) + "_gap_ms"] = Milliseconds(longest_).count();
        state.counters[std::string(name) + "_ms"] = Milliseconds(last_ - begin).count();
    }

 private:
    using Clock = std::chrono::steady_clock;
    void Tick() {
        const Clock::time_point now = Clock::now();
        longest_ = std::max(longest_, now - std::exchange(last_, now));
    }

    const std::vector<ControlPlan> controls_ = {{u"Tick", ControlKind::Timer}};
    const FormPlan plan_ = {u"Ticker", u"", controls_};
    OwnedWindow window_ = CurrentToolkit().Create(plan_, *this);
    Clock::time_point last_;
    Clock::duration longest_{};
};

void LongestGaps(benchmark::State& state) {
    const bench::Folder folder;
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("TAV_SETTINGS", ToUtf8(folder / u"settings").c_str(), 1);
    bench::NewDatabase(folder / u"PlX_Base.mdb");
    UseDatabase(folder / u"PlX_Base.mdb");
    samples::ManyFiles(folder / u"in/", static_cast<int>(state.range(0)));
    WriteSetting(u"ImportPath", folder / u"in");
    WriteSetting(u"ExportPath", folder / u"out");
    const samples::Taxpayer& taxpayer = samples::SampleTaxpayer();
    Taxpayer() = {taxpayer.inn, taxpayer.kpp, {}};
    UseWindows();
    frmmain& window = Shared<frmmain>();
    for (auto _ : state) {
        Ticker ticker;
        const auto settle = [&] {
            for (bool was = false; !was || window.Refreshing(); CurrentToolkit().ProcessEvents()) {
                was = was || window.Refreshing();
            }
        };
        ticker.Run([&] { RunImport({folder / u"in", {}}, taxpayer.inn, taxpayer.kpp); }, state, "import");
        ticker.Run([&] { window.Show(); }, state, "open");
        ticker.Run(settle, state, "refresh");
        const auto summarise = [&](auto& summary) {
            summary(getbase(), taxpayer.inn, taxpayer.kpp, folder / u"out", SummaryChoice{});
        };
        ticker.Run([&] { summarise(GetFiles); }, state, "statements");
        ticker.Run([&] { summarise(GetFilesAct); }, state, "acts");
        ticker.Run([&] { clearbase(getbase(), taxpayer.inn, taxpayer.kpp); }, state, "clear");
        window.Unload();
    }
}
BENCHMARK(LongestGaps)->Arg(2000)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tav
