// Memo and OLE values of every length against a model of the table, Decimals, and damage that is refused by name.
#include <gmock/gmock.h>

#include <map>
#include <random>

#include "jet/file/usage_map.h"
#include "jet/jet_fixtures.h"
#include "jet/schema/definition_layout.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using test::ExpectSound;
using test::FailureOf;
using test::TempFolder;
using test::Values;
using testing::HasSubstr;

Text NewMemos(const TempFolder& folder) {
    const TablePlan plan = {
        u"memos",
        {{u"id", ColumnType::Long}, {u"note", ColumnType::Memo}, {u"data", ColumnType::Ole}},
        {{u"PrimaryKey", {u"id"}, true}}};
    return folder.Write(u"memos.mdb", EmptyDatabase({&plan, 1}));
}

TEST(LongValues, OfEveryLengthAgreeWithTheModelAndGiveTheirPagesBack) {
    TempFolder folder;
    const Text path = NewMemos(folder);
    std::mt19937 random(20261122);
    const std::size_t lengths[] = {0, 5, 32, 33, 64, 65, 2038, 2039, 4071, 4076, 4077, 8144, 8145, 20000};
    const auto length = [&] { return lengths[random() % std::size(lengths)]; };
    const auto note = [&] {
        return random() % 5 == 0 ? Value() : Text(length(), random() % 2 == 0 ? u'n' : u'ж');
    };
    const auto data = [&] { return random() % 5 == 0 ? Value() : Binary{std::string(length(), '\x01')}; };
    std::map<RowId, Values> model;
    const auto expect_model = [&](Table& table) {
        auto expected = model.begin();
        for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next(), ++expected) {
            ASSERT_EQ(scan.row().id(), expected->first);
            ASSERT_EQ(scan.row().All(), expected->second);
        }
        ASSERT_EQ(expected, model.end());
    };
    for (std::int64_t round = 0; round < 3; ++round) {
        Database database(path, Database::Access::Write);
        Table& table = *database.FindTable(u"memos");
        for (std::int64_t i = 0; i < 150; ++i) {
            auto victim = model.begin();
            if (!model.empty()) std::advance(victim, random() % model.size());
            const unsigned kind = model.size() < 10 ? 0 : random() % 4;
            if (kind <= 1) {
                const Values values = {round * 1000 + i, note(), data()};
                model[table.Insert(values)] = values;
            } else if (kind == 2) {
                victim->second[1 + random() % 2] = Null();
                victim->second[1] = note();
                table.Update(victim->first, victim->second);
            } else {
                table.Delete(victim->first);
                model.erase(victim);
            }
        }
        expect_model(table);
        database.file().Commit();
        ExpectSound(path);
    }
    Database database(path, Database::Access::Write);
    Table& table = *database.FindTable(u"memos");
    for (const auto& [id, values] : model) table.Delete(id);
    for (const LongValueMaps& maps : table.definition().long_values) {
        EXPECT_TRUE(UsageMap(database.file(), maps.owned).Pages().empty());
    }
}

// A chain whose last record leads back to its first.
TEST(LongValues, ChainInACircleIsRefusedByName) {
    TempFolder folder;
    const Text path = NewMemos(folder);
    RowId id;
    {
        Database database(path, Database::Access::Write);
        Table& table = *database.FindTable(u"memos");
        id = table.Insert(Values{std::int64_t{1}, Null(), Binary{std::string(9000, 'x')}});
        const std::vector<Pointer> records = table.Find(id).LongRecords(2);
        ASSERT_EQ(records.size(), 3u);
        Page& last = database.file().Change(records.back().page);
        PutU32(last.data() + RecordAt(database.file(), records.back().page, last, records.back().slot).begin,
               records.front().Word());
        database.file().Commit();
    }
    Database database(path, Database::Access::Write);
    Table& table = *database.FindTable(u"memos");
    const auto circle = testing::AllOf(HasSubstr("memos.mdb"), HasSubstr("'data'"), HasSubstr("in a circle"));
    EXPECT_THAT(FailureOf([&] { table.Delete(id); }), circle);
    EXPECT_THAT(FailureOf([&] { table.Update(id, Values{std::int64_t{1}, Null(), Null()}); }), circle);
    EXPECT_FALSE(database.file().HasChanges());
}

constexpr std::size_t kColumnBlock = 25;
constexpr std::size_t kScaleAt = 12;  // in a column block

TEST(LongValues, DecimalOfWrongScaleIsRefusedByName) {
    TempFolder folder;
    const Text path = folder.Write(u"dec.mdb", test::TestFile("tav/hosts/dec.mdb"));
    std::size_t scale_at = 0;
    {
        Database database(path, Database::Access::Read);
        const TableDefinition& table = database.FindTable(u"tav_operations")->definition();
        const std::size_t column = *table.FindColumn(u"p10");
        ASSERT_EQ(table.columns[column].type, ColumnType::Numeric);
        EXPECT_EQ(table.columns[column].precision(), 18);
        EXPECT_EQ(table.columns[column].scale(), 2);
        scale_at = table.page * kPageSize + layout::kHeader + layout::kCounter * table.indexes.size() +
                   kColumnBlock * column + kScaleAt;
    }
    std::string bytes = ReadFile(path);
    bytes[scale_at] = 19;
    Database database(folder.Write(u"dec.mdb", bytes), Database::Access::Write);
    EXPECT_THAT(FailureOf([&] { database.FindTable(u"tav_operations"); }),
                testing::AllOf(HasSubstr("dec.mdb"), HasSubstr("'p10'"), HasSubstr("scale")));
}

}  // namespace
}  // namespace tav::jet
