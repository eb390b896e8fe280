// Reads every sample and compares it with its expected contents, row for row.
#include <cmath>
#include <nlohmann/json.hpp>

#include "common/failure.h"
#include "jet/jet_samples.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using Json = nlohmann::json;
using test::SampleDatabases;
using test::SamplePath;

// A value as the expected contents write it: dates as numbers, money as text with four decimals.
Json AsJson(const Value& value) {
    struct Converter {
        Json operator()(const Null&) const { return nullptr; }
        Json operator()(bool flag) const { return flag; }
        Json operator()(std::int64_t number) const { return number; }
        Json operator()(double number) const { return number; }
        Json operator()(const Money& money) const {
            const std::int64_t amount = std::abs(money.ten_thousandths);
            const std::string fraction = std::to_string(10000 + amount % 10000).substr(1);
            return (money.ten_thousandths < 0 ? "-" : "") + std::to_string(amount / 10000) + "." + fraction;
        }
        Json operator()(const Date& date) const { return date.serial; }
        Json operator()(const Text& text) const { return ToUtf8(text); }
        Json operator()(const Binary& binary) const { return binary.bytes; }
    };
    return std::visit(Converter(), value);
}

Json ActualRow(const Table::Row& row, const TableDefinition& table, const Json& columns) {
    Json values = Json::array();
    for (const Json& column : columns) {
        const auto at = table.FindColumn(FromUtf8(column["name"].get<std::string>()));
        values.push_back(at ? AsJson(row.Get(*at)) : Json("no such column"));
    }
    const RowId id = row.id();
    return {{"rowid", std::to_string(id.page) + ":" + std::to_string(id.slot)}, {"values", values}};
}

void ExpectTable(Database& database, const std::string& name, const Json& expected) {
    SCOPED_TRACE(name);
    Table* table = database.FindTable(FromUtf8(name));
    ASSERT_NE(table, nullptr);
    std::size_t count = 0;
    for (Table::Scan scan = table->Rows(); !scan.AtEnd(); scan.Next(), ++count) {
        ASSERT_LT(count, expected["rows"].size());
        const Json actual = ActualRow(scan.row(), table->definition(), expected["columns"]);
        EXPECT_EQ(actual, expected["rows"][count]);
        EXPECT_EQ(table->Find(scan.row().id()).All(), scan.row().All());
    }
    EXPECT_EQ(count, expected["rows"].size());
}

TEST(Reading, SamplesHaveTheirExpectedContents) {
    std::size_t tables = 0;
    for (const Text& sample : SampleDatabases()) {
        const Text golden = sample.substr(0, sample.size() - 4) + u".json";
        if (!FileExists(golden)) continue;
        SCOPED_TRACE(ToUtf8(sample));
        const Json expected = Json::parse(ReadFile(golden));
        Database database(sample, Database::Access::Read);
        for (const auto& [table, contents] : expected["tables"].items()) {
            ExpectTable(database, table, contents);
            ++tables;
        }
        EXPECT_EQ(database.Tables().size(), expected["tables"].size());
    }
    EXPECT_EQ(tables, test::SampleFolder().empty() ? 3u : 28u);
}

TEST(Reading, WideTableSpreadsOverTwoDefinitionPages) {
    TAV_NEEDS_SAMPLES();
    Database database(SamplePath("test2V2000.mdb"), Database::Access::Read);
    Table* table = database.FindTable(u"msp_projects");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->definition().pages, (std::vector<PageNumber>{15, 19}));
    EXPECT_EQ(table->definition().columns.size(), 74u);
    EXPECT_EQ(table->definition().indexes.size(), 2u);
    Table::Scan scan = table->Rows();
    ASSERT_FALSE(scan.AtEnd());
    std::size_t ole_size = 0;
    for (std::size_t i = 0; i < table->definition().columns.size(); ++i) {
        const Value value = scan.row().Get(i);
        if (table->definition().columns[i].type == ColumnType::Ole) {
            ole_size = std::get<Binary>(value).bytes.size();
        }
    }
    EXPECT_GT(ole_size, 5 * 4072u);  // a chain of six records
    scan.Next();
    EXPECT_TRUE(scan.AtEnd());
}

TEST(Reading, NoSuchTable) {
    Database database(SamplePath("own.mdb"), Database::Access::Read);
    for (const TextView name : {u"MSysObjects", u"none", u""}) EXPECT_EQ(database.FindTable(name), nullptr);
}

}  // namespace
}  // namespace tav::jet
