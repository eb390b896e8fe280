// The main window's list of the database: how long a refill takes, from the file to the screen. And how long the
// windows stand still at most, while documents are imported, listed, summed up and cleared.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
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
#include "ui/frmFilter.h"
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

// A timer of a form ticks every millisecond, as long as the event loop gets to it. On a machine that has other things
// to do the clock says more than the windows owe: what their thread waited for a processor is counted off beside it.
class Ticker : public FormEvents {
 public:
    Ticker() {
        window_->SetInterval(0, 1);
        CurrentToolkit().ProcessEvents();
    }
    void OnEvent(std::size_t, Event) override { Tick(); }
    void OnCloseRequest() override {}
    void Run(const std::function<void()>& work, benchmark::State& state, const std::string& name) {
        const Instant begin = last_ = Now();
        longest_ = {};
        work();
        Tick();
        state.counters[name + "_gap_ms"] = longest_.clock;
        state.counters[name + "_gap_owed_ms"] = longest_.owed;
        state.counters[name + "_ms"] = last_.clock - begin.clock;
        state.counters[name + "_cpu_ms"] = last_.process - begin.process;
    }

 private:
    struct Instant {  // in milliseconds
        double clock = 0;
        double owed = 0;     // the clock less this thread's waits for a processor
        double process = 0;  // computed by all
    };
    static Instant Now() {
        const std::chrono::duration<double, std::milli> clock =
            std::chrono::steady_clock::now().time_since_epoch();
        std::ifstream schedule("/proc/thread-self/schedstat");  // computed, waited: in nanoseconds
        double computed = 0;
        double waited = 0;
        schedule >> computed >> waited;
        return {clock.count(), clock.count() - waited / 1e6,
                static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC};
    }
    void Tick() {
        const Instant now = Now();
        longest_.clock = std::max(longest_.clock, now.clock - last_.clock);
        longest_.owed = std::max(longest_.owed, now.owed - last_.owed);
        last_ = now;
    }

    const std::vector<ControlPlan> controls_ = {{u"Tick", ControlKind::Timer}};
    const FormPlan plan_ = {u"Ticker", u"", controls_};
    OwnedWindow window_ = CurrentToolkit().Create(plan_, *this);
    Instant last_;
    Instant longest_;
};

// So many documents, of so many lines each.
void LongestGaps(benchmark::State& state) {
    const bench::Folder folder;
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("TAV_SETTINGS", ToUtf8(folder / u"settings").c_str(), 1);
    bench::NewDatabase(folder / u"PlX_Base.mdb");
    UseDatabase(folder / u"PlX_Base.mdb");
    samples::ManyFiles(folder / u"in/", static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    WriteSetting(u"ImportPath", folder / u"in");
    WriteSetting(u"ExportPath", folder / u"out");
    WriteSetting(u"OpenAs", u"doc");
    const samples::Taxpayer& taxpayer = samples::SampleTaxpayer();
    Taxpayer() = {taxpayer.inn, taxpayer.kpp, {}};
    UseWindows();
    frmmain& window = Shared<frmmain>();
    for (auto _ : state) {
        Ticker ticker;
        // The refresh begins after its timer's 100 ms and runs to its end inside one call.
        const auto refresh = [&] {
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
            while (std::chrono::steady_clock::now() < end) CurrentToolkit().ProcessEvents();
        };
        const auto summarise = [&](auto& summary) {
            summary(getbase(), taxpayer.inn, taxpayer.kpp, folder / u"out", SummaryChoice{});
        };
        ticker.Run([&] { window.Show(); }, state, "open_empty");
        ticker.Run(refresh, state, "first_refresh");
        ticker.Run([&] { RunImport({folder / u"in", {}}, taxpayer.inn, taxpayer.kpp); }, state, "import");
        ticker.Run([&] { window.Refill(); }, state, "refill");
        ticker.Run(refresh, state, "refresh");
        ticker.Run([&] { summarise(GetFiles); }, state, "statements");
        ticker.Run([&] { Shared<frmFilter>().Show(); }, state, "filter");
        Shared<frmFilter>().Unload();
        ticker.Run([&] { summarise(GetFilesAct); }, state, "acts");
        ticker.Run([&] { clearbase(getbase(), taxpayer.inn, taxpayer.kpp); }, state, "clear");
        window.Unload();
    }
}
BENCHMARK(LongestGaps)
    ->Args({5000, 3})
    ->Args({20000, 3})
    ->Args({1500, 200})
    ->Args({1, 300000})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tav
