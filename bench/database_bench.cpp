// Rows into the database file, compared with an SQLite fed the same
// SQL text in one transaction; one indexed query of a large file.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <vector>

#include "db/connection.h"
#include "fixture.h"
#include "platform/files.h"
#include "platform/locked_file.h"

namespace tav {
namespace {

constexpr int kRows = 20000;

SqlText InsertOf(int row) {
    SqlText sql(u"insert into tav_operations (id,p1,p2,p3,p4,p5,p6,p7,p8,p9,p10,p11,p12,p13,p14) values (");
    sql.Number(1 + row / 20);
    const Text number = Digits(row);
    for (const Text& value :
         {Text(u"01.02.2011"), Text(u"20.02.2011"), u"Начислено по декларации " + Digits(row % 50),
          Text(u"Декларация"), Text(u"2010"), number, Text(u"15.01.2011"), Text(u"1"), Text(u"налог"),
          number + u",25", Text(u"0,00"), Text(u"0,00"), u"-" + number + u",25", u"-" + number + u",25"}) {
        sql.Fixed(u",'").Value(value).Fixed(u"'");
    }
    return sql.Fixed(u")");
}

void NativeInsert(benchmark::State& state) {
    const bench::Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        bench::NewDatabase(folder / u"base.mdb");
        state.ResumeTiming();
        Connection connection;
        connection.Open(ConnectionString(folder / u"base.mdb"));
        for (int row = 0; row < kRows; ++row) connection.Execute(InsertOf(row));
        connection.Close();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(NativeInsert)->Unit(benchmark::kMillisecond);

void SqliteInsert(benchmark::State& state) {
    const bench::Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        if (FileExists(folder / u"x.db")) DeleteFile(folder / u"x.db");
        state.ResumeTiming();
        sqlite3* database = nullptr;
        if (sqlite3_open(ToUtf8(folder / u"x.db").c_str(), &database) != SQLITE_OK) std::abort();
        const auto run = [&](const std::string& sql) {
            if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
        };
        run("create table tav_operations (id int,p1,p2,p3,p4,p5,p6,p7,p8,p9,p10,p11,p12,p13,p14,tid)");
        run("create index by_id on tav_operations (id)");
        run("begin");
        for (int row = 0; row < kRows; ++row) run(ToUtf8(InsertOf(row).text()));
        run("commit");
        sqlite3_close(database);
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(SqliteInsert)->Unit(benchmark::kMillisecond);

// About 100 MB of rows, made once.
void FillLarge(TextView path) {
    bench::NewDatabase(path);
    Connection connection;
    connection.Open(ConnectionString(path));
    for (int row = 0; row < 440000; ++row) {
        connection.Execute(InsertOf(row));
        if (row % 50000 == 0) connection.EndUnit();
    }
    connection.Close();
}

void OneIndexedQuestion(benchmark::State& state) {
    const bench::Folder folder;
    const Text path = folder / u"large.mdb";
    FillLarge(path);
    state.counters["file_MB"] = static_cast<double>(LockedFile(path, LockedFile::Access::Read).Size()) / 1e6;
    for (auto _ : state) {
        Connection connection;
        connection.OpenForReading(ConnectionString(path));
        const Recordset rows = connection.Execute(u"select p3, p13 from tav_operations where id=12345");
        if (rows.RecordCount() != 20) std::abort();
    }
}
BENCHMARK(OneIndexedQuestion)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tav
