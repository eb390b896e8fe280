// Searches by indexes and hashes find what a walk over all rows finds, in files of the database engine
// itself.
#include "sql/executor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "jet/create/create.h"
#include "jet/jet_samples.h"
#include "jet/table/column_conversion.h"
#include "sql/sql_collation.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav::jet {
namespace {

bool Equal(const Value& a, const Value& b) {
    const Text* text = std::get_if<Text>(&a);
    if (text == nullptr || !std::holds_alternative<Text>(b)) return a == b;
    return Collate(*text, std::get<Text>(b)) == 0;
}

// Not a number for what has no order as one.
double Number(const Value& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* money = std::get_if<Money>(&value))
        return static_cast<double>(money->ten_thousandths) / 1e4;
    if (const auto* date = std::get_if<Date>(&value)) return date->serial;
    return std::numeric_limits<double>::quiet_NaN();
}

std::vector<Value> ColumnValues(Table& table, std::size_t column) {
    std::vector<Value> values;
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next())
        values.push_back(scan.row().Get(column));
    return values;
}

// A text that the column reads back as this very value.
bool CanBeWritten(const Column& column, const Value& value) {
    if (IsNull(value) || std::holds_alternative<Binary>(value)) return false;
    try {
        return ValueText(value).find(u'\'') == Text::npos &&
               ConvertForColumn(column, ValueText(value)) == value;
    } catch (const Failure&) {
        return false;
    }
}

std::int64_t Count(Executor& executor, TextView table, TextView column, TextView operation,
                   const Value& value) {
    SqlText sql(
        Text(u"select count(*) from [").append(table).append(u"] where [").append(column).append(u"]"));
    sql.Fixed(operation).Fixed(u"'").Value(ValueText(value)).Fixed(u"'");
    return std::get<std::int64_t>(executor.Execute(sql).Field(0));
}

// The number of searches made.
int CompareColumn(Executor& executor, Table& table, std::size_t at) {
    const Column& column = table.definition().columns[at];
    const std::vector<Value> values = ColumnValues(table, at);
    const std::size_t step = values.size() / 12 + 1;
    int searches = 0;
    for (std::size_t i = 0; i < values.size(); i += step) {
        const Value& value = values[i];
        if (!CanBeWritten(column, value)) continue;
        const auto same =
            std::count_if(values.begin(), values.end(), [&](const Value& v) { return Equal(v, value); });
        EXPECT_EQ(Count(executor, table.definition().name, column.name, u"=", value), same)
            << ToUtf8(column.name) << " = " << ToUtf8(ValueText(value));
        ++searches;
        if (column.IsText() || column.type == ColumnType::Boolean) continue;
        const auto above = std::count_if(values.begin(), values.end(),
                                         [&](const Value& v) { return Number(v) >= Number(value); });
        EXPECT_EQ(Count(executor, table.definition().name, column.name, u">=", value), above)
            << ToUtf8(column.name) << " >= " << ToUtf8(ValueText(value));
    }
    return searches;
}

TEST(Executor, SearchesFindWhatScansFind) {
    int searches = 0;
    for (const Text& sample : test::SampleDatabases()) {
        try {
            Executor executor(sample, Database::Access::Read);
            for (const TableEntry& entry : executor.database().Tables()) {
                SCOPED_TRACE(ToUtf8(sample) + ", " + ToUtf8(entry.name));
                Table& table = *executor.database().FindTable(entry.name);
                const std::size_t columns = std::min<std::size_t>(table.definition().columns.size(), 12);
                for (std::size_t i = 0; i < columns; ++i) searches += CompareColumn(executor, table, i);
            }
        } catch (const Failure& failure) {
            std::cout << ToUtf8(sample) << ": " << failure.what() << '\n';
        }
    }
    EXPECT_GT(searches, test::SampleFolder().empty() ? 60 : 400);
}

// Columns that only a file of somebody else has: executor.txt. "use FILE" takes another database, with
// "PAGE+OFFSET=BYTES" one in which these bytes have been damaged.
TEST(Executor, ColumnsOfEveryKind) {
    const test::TempFolder folder;
    const TablePlan plan = {
        u"t",
        {{u"id", ColumnType::Long}, {u"amount", ColumnType::Text, 20}, {u"flag", ColumnType::Boolean}},
        {}};
    const Text own = folder.Write(u"new.mdb", EmptyDatabase({&plan, 1}));
    std::unique_ptr<Executor> executor;
    const auto answer = [&](TextView line) -> Text {
        if (line.starts_with(u"use ")) {
            executor.reset();
            GetNext(line, u" ");
            const std::string file = ToUtf8(GetNext(line, u" "));
            std::string bytes = file == "own" ? ReadFile(own) : test::TestFile("tav/hosts/" + file);
            while (!line.empty()) {
                std::size_t at = kPageSize * std::stoul(ToUtf8(GetNext(line, u"+")));
                at += std::stoul(ToUtf8(GetNext(line, u"=")));
                for (TextView hex = GetNext(line, u" "); !hex.empty(); hex.remove_prefix(2))
                    bytes.at(at++) = static_cast<char>(std::stoi(ToUtf8(hex.substr(0, 2)), nullptr, 16));
            }
            const Text path = folder.Write(u"used.mdb", bytes);
            executor = std::make_unique<Executor>(path, Database::Access::Write);
            return {};
        }
        try {
            Text rows;
            for (Recordset set = executor->Execute(SqlText(line)); !set.Eof(); set.MoveNext()) {
                rows.append(IsNull(set.Field(0)) ? u"null" : ValueText(set.Field(0))).append(u"\n");
            }
            return rows;
        } catch (const Failure& failure) {
            const Text words = ReplaceAll(failure.description(), folder / u"used.mdb", u"FILE");
            return Text(u"! ").append(words).append(u"\n");
        }
    };
    test::ExpectTranscript("sql/executor.txt", [&](TextView statements) {
        Text answers;
        while (!statements.empty()) answers += answer(GetNext(statements, u"\n"));
        return answers;
    });
}

// In a table that the database's own program made: a number with the default 0.
TEST(Executor, ColumnsThatAnInsertDoesNotNameGetTheirDefaults) {
    TAV_NEEDS_SAMPLES();
    const test::TempFolder folder;
    Executor executor(test::CopySample(folder, test::SamplePath("testIndexPropertiesV2000.mdb")),
                      Database::Access::Write);
    executor.Execute(SqlText(u"insert into TableUnique2_temp (row,data1) values ('new1','x')"));
    executor.Execute(SqlText(u"insert into TableUnique2_temp (row,data1,data2) values ('new2','y',Null)"));
    Recordset rows =
        executor.Execute(SqlText(u"select data2 from TableUnique2_temp where row in ('new1','new2')"));
    ASSERT_EQ(rows.RecordCount(), 2);
    EXPECT_EQ(rows.Field(0), Value(std::int64_t{0}));
    rows.MoveNext();
    EXPECT_TRUE(IsNull(rows.Field(0)));
}

// In a table of the same origin whose names may not be empty. Then another property becomes a rule: its
// value, the number 109, is an "m".
TEST(Executor, RulesOfATableAreKeptOrItIsRefused) {
    TAV_NEEDS_SAMPLES();
    const test::TempFolder folder;
    std::string bytes = ReadFile(test::SamplePath("MultiRead.mdb"));
    const auto said = [&] {
        Executor executor(folder.Write(u"rules.mdb", bytes), Database::Access::Write);
        return test::FailureOf(
            [&] { executor.Execute(SqlText(u"insert into Products (ProductName) values ('')")); });
    };
    EXPECT_EQ(said(), "The field 'Products.ProductName' cannot be a zero-length string.");
    const std::string property("D\0i\0s\0p\0l\0a\0y\0C\0o\0n\0t\0r\0o\0l\0", 28);
    const std::string rule("V\0a\0l\0i\0d\0a\0t\0i\0o\0n\0R\0u\0l\0e\0", 28);
    for (std::size_t at = 0; (at = bytes.find(property, at)) != bytes.npos;) bytes.replace(at, 28, rule);
    EXPECT_EQ(
        said(),
        "Cannot update table 'Products': the validation rule 'm' of column 'ProductName' is not enforced "
        "here.");
}

}  // namespace
}  // namespace tav::jet
