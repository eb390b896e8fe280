// The indexes of databases made by the database's own program: every entry is the key this engine makes of
// its row, and every row has its entry.
#include <gtest/gtest.h>

#include <map>

#include "common/failure.h"
#include "jet/index/index_key.h"
#include "jet/index/index_probe.h"
#include "jet/jet_samples.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

struct Count {
    int indexes = 0;
    int entries = 0;
    int refused = 0;  // rows whose values have no known key
};

void CompareIndex(PageFile& file, Table& table, std::size_t number, Count& count) {
    const TableDefinition& definition = table.definition();
    const RealIndex& index = definition.indexes[number];
    const ProbedTree probed = ProbeIndexTree(file, definition.page, index);
    if (!WhyNoKeys(definition, index).empty()) return;
    ++count.indexes;
    std::map<RowId, std::string> expected;
    std::set<RowId> refused;
    for (auto scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const auto row = scan.row();
        const std::vector<Value> values = row.All();
        if (index.ignores_nulls && AllNull(index, values)) continue;
        try {
            expected[row.id()] = EncodeKey(definition, index, values);
        } catch (const Failure&) {
            refused.insert(row.id());
        }
    }
    std::size_t walked = 0;
    for (auto cursor = table.Index(number).First(); !cursor.AtEnd(); cursor.Next(), ++walked) {
        ASSERT_LT(walked, probed.entries.size());
        EXPECT_EQ(std::string(cursor.key()) + BigEndian(cursor.row().Word()), probed.entries[walked]);
        if (refused.contains(cursor.row())) continue;
        ASSERT_TRUE(expected.contains(cursor.row()));
        EXPECT_EQ(cursor.key(), expected[cursor.row()]) << ToUtf8(definition.name + u"." + index.name);
        EXPECT_TRUE(table.Index(number).HasKey(cursor.key()));
    }
    EXPECT_EQ(walked, expected.size() + refused.size()) << ToUtf8(definition.name + u"." + index.name);
    count.entries += static_cast<int>(expected.size());
    count.refused += static_cast<int>(refused.size());
}

TEST(IndexSamples, EveryEntryIsTheKeyOfItsRow) {
    Count count;
    for (const Text& sample : test::SampleDatabases()) {
        SCOPED_TRACE(ToUtf8(sample));
        Database database(sample, Database::Access::Read);
        for (PageNumber page = 2; page <= 5; ++page) {
            Table table(database.file(), ReadTableDefinition(database.file(), page, u"system table"));
            for (std::size_t i = 0; i < table.definition().indexes.size(); ++i) {
                CompareIndex(database.file(), table, i, count);
            }
        }
        for (const TableEntry& entry : database.Tables()) {
            Table& table = *database.FindTable(entry.name);
            for (std::size_t i = 0; i < table.definition().indexes.size(); ++i) {
                CompareIndex(database.file(), table, i, count);
            }
        }
    }
    EXPECT_GT(count.entries, test::SampleFolder().empty() ? 60 : 1000);
    EXPECT_LT(count.refused, count.entries / 20);
}

}  // namespace
}  // namespace tav::jet
