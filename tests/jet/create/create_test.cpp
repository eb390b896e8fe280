#include "jet/create/create.h"

#include <gtest/gtest.h>

#include <set>

#include "common/failure.h"
#include "jet/check/checker.h"
#include "jet/jet_samples.h"
#include "jet/table/database.h"
#include "jet/table/read_only.h"

namespace tav::jet {
namespace {

// Bytes that mean nothing in the file the database engine made: places of variable columns, orders of unused
// index places, and a field of the index block nobody reads.
const std::set<std::size_t> kMeaningless = [] {
    const std::vector<std::pair<std::size_t, std::vector<std::size_t>>> pages = {
        {2, {233, 308, 309, 333, 334, 359, 383, 409, 483, 801, 807}},
        {3, {171, 250, 262, 265, 277, 279}},
        {4, {122, 197, 222, 272, 415, 421, 427, 439, 441}}};
    std::set<std::size_t> places;
    for (const auto& [page, offsets] : pages) {
        for (const std::size_t offset : offsets) places.insert(page * kPageSize + offset);
    }
    return places;
}();

// The sample of a database without tables: the one that is as small.
std::string SampleWithoutTables(std::size_t size) {
    for (const Text& path : tav::test::SampleDatabases()) {
        if (std::string bytes = ReadFile(path); bytes.size() == size) return bytes;
    }
    return {};
}

TEST(EmptyDatabase, EqualsWhatTheDatabaseEngineMakes) {
    TAV_NEEDS_SAMPLES();
    const std::string made = EmptyDatabase({});
    const std::string expected = SampleWithoutTables(made.size());

    ASSERT_EQ(made.size(), expected.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        if (kMeaningless.contains(i)) continue;
        ASSERT_EQ(static_cast<unsigned char>(made[i]), static_cast<unsigned char>(expected[i]))
            << "page " << i / kPageSize << ", offset " << i % kPageSize;
    }
}

// A table of many types, so wide that its definition takes two pages.
TEST(EmptyDatabase, HoldsTheTablesOfThePlan) {
    std::vector<Text> names;
    for (int i = 0; i < 120; ++i) names.push_back(u"value" + Digits(i));
    TablePlan wide{u"wide", {}, {{u"second", {u"value1", u"value0"}}, {u"PrimaryKey", {u"value0"}, true}}};
    const ColumnType types[] = {ColumnType::Long,   ColumnType::Text, ColumnType::Memo, ColumnType::Boolean,
                                ColumnType::Double, ColumnType::Ole,  ColumnType::Date, ColumnType::Byte};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const ColumnType type = i < 16 ? types[i % std::size(types)] : ColumnType::Double;
        wide.columns.push_back(
            {names[i], type, static_cast<std::uint16_t>(type == ColumnType::Text ? 30 : 0)});
    }
    const TablePlan plans[] = {wide, {u"narrow", {{u"only", ColumnType::Boolean}}, {}}};
    const tav::test::TempFolder folder;
    const Text path = folder.Write(u"new.mdb", EmptyDatabase(plans));

    EXPECT_TRUE(CheckDatabase(path).empty());
    Database database(path, Database::Access::Read);
    ASSERT_EQ(database.Tables().size(), 2u);
    const TableDefinition& table = database.FindTable(u"WIDE")->definition();
    EXPECT_EQ(table.pages.size(), 2u);
    ASSERT_EQ(table.columns.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(table.columns[i].name, names[i]);
        EXPECT_EQ(table.columns[i].type, wide.columns[i].type);
    }
    ASSERT_EQ(table.indexes.size(), 2u);
    EXPECT_EQ(table.indexes[0].columns.size(), 2u);
    EXPECT_FALSE(table.indexes[0].primary);
    EXPECT_TRUE(table.indexes[1].primary);
    EXPECT_EQ(jet::WhyReadOnly(table), Text());
}

TEST(EmptyDatabase, RefusesMoreTablesThanItsSystemTablesHold) {
    const std::vector<Text> names = [] {
        std::vector<Text> made;
        for (int i = 0; i < 100; ++i) made.push_back(u"table" + Digits(i));
        return made;
    }();
    std::vector<TablePlan> plans;
    for (const Text& name : names) plans.push_back({name, {{u"id", ColumnType::Long}}, {}});
    EXPECT_THROW(EmptyDatabase(plans), Failure);
}

}  // namespace
}  // namespace tav::jet
