// Long values and Decimals that are damaged are refused by name.
#include <gmock/gmock.h>

#include "jet/jet_fixtures.h"
#include "jet/schema/definition_layout.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using test::FailureOf;
using test::NewDatabase;
using test::TempFolder;
using test::Thing;
using test::Values;
using testing::HasSubstr;

// A chain whose last record leads back to its first.
TEST(LongValues, ChainInACircleIsRefusedByName) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    RowId id;
    {
        Database database(path, Database::Access::Write);
        Table& table = *database.FindTable(u"things");
        Values thing = Thing(1, u"x");
        thing[6] = Binary{std::string(9000, 'x')};
        id = table.Insert(thing);
        const std::vector<Pointer> records = table.Find(id).LongRecords(6);
        ASSERT_EQ(records.size(), 3u);
        Page& last = database.file().Change(records.back().page);
        PutU32(last.data() + RecordAt(database.file(), records.back().page, last, records.back().slot).begin,
               records.front().Word());
        database.file().Commit();
    }
    Database database(path, Database::Access::Write);
    Table& table = *database.FindTable(u"things");
    const auto circle = testing::AllOf(HasSubstr("new.mdb"), HasSubstr("'data'"), HasSubstr("in a circle"));
    EXPECT_THAT(FailureOf([&] { table.Delete(id); }), circle);
    EXPECT_THAT(FailureOf([&] { table.Update(id, Thing(1, u"x")); }), circle);
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
