// Searches by indexes and hashes find what a walk over all rows finds, in files of the database engine
// itself.
#include "sql/executor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <limits>

#include "common/failure.h"
#include "common/regional.h"
#include "jet/create/create.h"
#include "jet/jet_samples.h"
#include "jet/table/column_conversion.h"
#include "sql/sql_collation.h"
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
    TAV_NEEDS_SAMPLES();
    int searches = 0;
    for (const Text& name : test::SampleDatabases()) {
        try {
            Executor executor(test::SamplePath(ToUtf8(name)), Database::Access::Read);
            for (const TableEntry& entry : executor.database().Tables()) {
                SCOPED_TRACE(ToUtf8(name) + ", " + ToUtf8(entry.name));
                Table& table = *executor.database().FindTable(entry.name);
                const std::size_t columns = std::min<std::size_t>(table.definition().columns.size(), 12);
                for (std::size_t i = 0; i < columns; ++i) searches += CompareColumn(executor, table, i);
            }
        } catch (const Failure& failure) {
            std::cout << ToUtf8(name) << ": " << failure.what() << '\n';
        }
    }
    EXPECT_GT(searches, 400);
}

// Columns that only a file of somebody else has: amounts in texts, booleans.
TEST(Executor, ReadsAmountsInTextsAndFindsClearedBooleans) {
    const test::TempFolder folder;
    const TablePlan plan = {
        u"t",
        {{u"id", ColumnType::Long}, {u"amount", ColumnType::Text, 20}, {u"flag", ColumnType::Boolean}},
        {}};
    Executor executor(folder.Write(u"new.mdb", EmptyDatabase({&plan, 1})), Database::Access::Write);
    const auto answer = [&](TextView sql) {
        try {
            const Recordset rows = executor.Execute(SqlText(sql));
            return rows.Eof() ? std::string() : ToUtf8(ValueText(rows.Field(0)));
        } catch (const Failure& failure) {
            return std::string(failure.what());
        }
    };
    const std::pair<TextView, const char*> cases[] = {
        {u"select sum(amount) from t", ""},
        {u"insert into t (id,amount,flag) values (1,'1,75',true)", ""},
        {u"insert into t (id,amount,flag) values (2,'-1 000,5',true)", ""},
        {u"insert into t (id,amount,flag) values (3,Null,true)", ""},
        {u"select sum(amount) from t", "-998,75"},
        {u"select avg(amount) from t", "-499,375"},
        {u"select abs(amount) from t where id=2", "1000,5"},
        {u"select sum(amount)*2 from t", "-1997,5"},
        {u"select sum(amount) from t where id='3'", ""},
        {u"select count(*) from t where flag=false", "0"},
        {u"update t set flag=Null where id=1", ""},
        {u"select count(*) from t where flag=false", "1"},
        {u"update t set flag=true", ""},
        {u"select count(*) from t where flag=false", "0"},
        {u"insert into t (id,amount) values (4,'1.75')", ""},
        {u"select sum(amount) from t", "Data type mismatch in criteria expression. '1.75'"},
    };
    for (const auto& [sql, expected] : cases) EXPECT_EQ(answer(sql), expected) << ToUtf8(sql);
}

}  // namespace
}  // namespace tav::jet
