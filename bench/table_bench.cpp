// The database engine below SQL: rows into a table of 16 columns with one index, in small and large files.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "jet/create/create.h"
#include "jet/table/database.h"
#include "platform/files.h"

namespace {

using namespace tav;
using jet::ColumnType;
using jet::Database;

constexpr TextView kNames[] = {u"id", u"p1", u"p2",  u"p3",  u"p4",  u"p5",  u"p6",  u"p7",
                               u"p8", u"p9", u"p10", u"p11", u"p12", u"p13", u"p14", u"tid"};

constexpr jet::PageNumber kGigabyte = 262144;  // pages

std::vector<Value> Operation(std::int64_t id) {
    const Text cell = u"Сальдо на 01.02.2011";
    return {id,   Date{40575}, cell,           cell, Text(u"1"), Text(u"12"), Text(u"01.02.2011"),
            cell, cell,        Text(u"налог"), 1.5,  2.5,        3.5,         4.5,
            5.5,  Null()};
}

// A database whose table is shaped like the operations of statements, with rows that fill so many pages;
// removed at the end.
class OperationsFile {
 public:
    explicit OperationsFile(jet::PageNumber pages = 0) {
        std::vector<jet::ColumnPlan> columns;
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            const bool text = i >= 2 && i <= 9;
            const ColumnType type = i == 0 || i == 15 ? ColumnType::Long
                                    : i == 1          ? ColumnType::Date
                                    : text            ? ColumnType::Text
                                                      : ColumnType::Double;
            columns.push_back({kNames[i], type, static_cast<std::uint16_t>(text ? 255 : 0)});
        }
        const std::vector<jet::TablePlan> plans = {{u"operations", columns, {{u"id", {u"id"}, false}}}};
        WriteFileWhole(path_, jet::EmptyDatabase(plans));
        Database database(path_, Database::Access::Write);
        std::vector<Value> row = Operation(0);
        std::fill_n(row.begin() + 2, 7, Text(255, u'ж'));  // more than half a page
        for (std::int64_t id = 0; database.file().PageCount() < pages; ++id) {
            row[0] = id;
            database.FindTable(u"operations")->Insert(row);
            if (id % 10000 == 0) database.file().Commit();
        }
        database.file().Commit();
    }
    ~OperationsFile() { DeleteFile(path_); }
    OperationsFile(const OperationsFile&) = delete;
    OperationsFile& operator=(const OperationsFile&) = delete;

    const Text& path() const { return path_; }

 private:
    Text path_ = FromUtf8(std::filesystem::temp_directory_path().native() + "/tav-bench-" +
                          std::to_string(std::rand()) + ".mdb");
};

// Each row is a statement of its own, as SQL would have it.
void InsertRows(benchmark::State& state) {
    const auto rows = static_cast<std::int64_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        const OperationsFile file;
        Database database(file.path(), Database::Access::Write);
        jet::Table& table = *database.FindTable(u"operations");
        std::vector<Value> row = Operation(0);
        state.ResumeTiming();
        for (std::int64_t i = 0; i < rows; ++i) {
            row[0] = i / 50;
            database.file().BeginStatement();
            table.Insert(row);
            database.file().KeepStatement();
        }
        state.PauseTiming();
        database.file().RollBack();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(InsertRows)->Arg(10000)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);

const OperationsFile& LargeFile() {
    static const OperationsFile file(kGigabyte);
    return file;
}

// The same rows into a file of one gigabyte, the first of them after opening it.
void InsertRowsIntoLargeFile(benchmark::State& state) {
    const OperationsFile& file = LargeFile();
    std::vector<Value> row = Operation(0);
    for (auto _ : state) {
        Database database(file.path(), Database::Access::Write);
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            row[0] = i / 50;
            database.file().BeginStatement();
            database.FindTable(u"operations")->Insert(row);
            database.file().KeepStatement();
        }
        state.PauseTiming();
        database.file().RollBack();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(InsertRowsIntoLargeFile)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Opening it and reading one row by the index.
void AskLargeFile(benchmark::State& state) {
    const OperationsFile& file = LargeFile();
    for (auto _ : state) {
        Database database(file.path(), Database::Access::Read);
        jet::Table& table = *database.FindTable(u"operations");
        jet::IndexTree tree = table.Index(0);
        benchmark::DoNotOptimize(table.Find(tree.Seek("\x7F\x80\x02").row()).All());
    }
}
BENCHMARK(AskLargeFile)->Unit(benchmark::kMillisecond);

}  // namespace
