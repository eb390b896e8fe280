// The main window's list of the database: how long a refill takes, from the file to the screen.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "db/connection.h"
#include "fixture.h"
#include "forms/forms.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/frmmain.h"

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

}  // namespace
}  // namespace tav
