// Inserts, updates and deletes against a model of the table, with memo and OLE values of every length, and
// the rules that refuse them.
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <random>

#include "jet/file/usage_map.h"
#include "jet/index/index_key.h"
#include "jet/jet_fixtures.h"
#include "jet/jet_samples.h"
#include "jet/table/database.h"
#include "jet/table/row_encoding.h"

namespace tav::jet {
namespace {

using test::CopySample;
using test::ExpectSound;
using test::FailureOf;
using test::NewDatabase;
using test::SamplePath;
using test::TempFolder;
using test::Thing;
using test::Values;

using Model = std::map<RowId, Values>;

// The table's rows are the model's, and each index lists each of them under its key, in order.
void ExpectModel(Table& table, const Model& model) {
    auto expected = model.begin();
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next(), ++expected) {
        ASSERT_NE(expected, model.end());
        ASSERT_EQ(scan.row().id(), expected->first);
        ASSERT_EQ(scan.row().All(), expected->second);
    }
    ASSERT_EQ(expected, model.end());
    for (std::size_t i = 0; i < table.definition().indexes.size(); ++i) {
        std::string last;
        std::size_t entries = 0;
        IndexTree tree = table.Index(i);
        for (IndexTree::Cursor cursor = tree.First(); !cursor.AtEnd(); cursor.Next(), ++entries) {
            const auto row = model.find(cursor.row());
            ASSERT_NE(row, model.end());
            EXPECT_EQ(cursor.key(),
                      EncodeKey(table.definition(), table.definition().indexes[i], row->second));
            EXPECT_LE(last, cursor.key());
            last = cursor.key();
        }
        EXPECT_EQ(entries, model.size());
    }
}

TEST(Changing, ManyRandomChangesAgreeWithTheModel) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    std::mt19937 random(20261121);
    const auto text = [&](std::size_t longest) {
        Text result(1 + random() % longest, u'x');
        for (char16_t& c : result) c = static_cast<char16_t>(u'a' + random() % 26);
        return result;
    };
    // A thing with values of a length that the ways to store them differ by.
    const std::size_t lengths[] = {0, 5, 32, 33, 64, 65, 2038, 2039, 4071, 4076, 4077, 8144, 8145, 20000};
    std::int64_t next = 0;
    const auto thing = [&](std::size_t longest, unsigned long_notes) {
        Values values = Thing(next++, text(longest), text(random() % long_notes == 0 ? 255 : 20));
        const std::size_t length = lengths[random() % std::size(lengths)];
        if (random() % 4 == 0) values[5] = Text(length, random() % 2 == 0 ? u'n' : u'ж');
        if (random() % 4 == 0) values[6] = Binary{std::string(length, '\x01')};
        return values;
    };
    Model model;
    for (int round = 0; round < 4; ++round) {
        Database database(path, Database::Access::Write);
        Table& table = *database.FindTable(u"things");
        for (int change = 0; change < 1500; ++change) {
            auto victim = model.begin();
            if (!model.empty()) std::advance(victim, random() % model.size());
            const unsigned kind = model.size() < 50 ? 0 : random() % 4;
            database.file().BeginStatement();
            if (kind <= 1) {
                const Values values = thing(40, 8);
                model[table.Insert(values)] = values;
            } else if (kind == 2) {
                const Values values = thing(60, 2);
                table.Update(victim->first, values);
                victim->second = values;
            } else {
                table.Delete(victim->first);
                model.erase(victim);
            }
            database.file().KeepStatement();
            database.file().Trim();
        }
        ExpectModel(table, model);
        database.file().Commit();
    }
    ExpectSound(path);
    Database database(path, Database::Access::Write);
    Table& table = *database.FindTable(u"things");
    ExpectModel(table, model);
    for (const auto& [id, values] : model) table.Delete(id);
    for (const LongValueMaps& maps : table.definition().long_values) {
        EXPECT_TRUE(UsageMap(database.file(), maps.owned).Pages().empty());
    }
}

TEST(Changing, RowsComeBackInTheOrderTheyWereInserted) {
    TempFolder folder;
    Database database(NewDatabase(folder), Database::Access::Write);
    Table& table = *database.FindTable(u"things");
    RowId last;
    for (int i = 0; i < 3000; ++i) {
        const RowId id = table.Insert(Thing(i, u"row", Text(80, u'n')));
        ASSERT_GT(id, last);
        last = id;
    }
}

TEST(Changing, ClearedTableGivesItsPagesBack) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    {
        Database database(path, Database::Access::Write);
        Table& table = *database.FindTable(u"things");
        PageNumber pages = 0;
        for (int round = 0; round < 5; ++round) {
            for (int i = 0; i < 2000; ++i) table.Insert(Thing(i, u"row", Text(100, u'n')));
            for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) table.Delete(scan.row().id());
            EXPECT_TRUE(table.Rows().AtEnd());
            if (round > 0) {
                EXPECT_EQ(database.file().PageCount(), pages);
            }
            pages = database.file().PageCount();
        }
        EXPECT_TRUE(UsageMap(database.file(), table.definition().owned_map).Pages().empty());
        database.file().Commit();
    }
    ExpectSound(path);
}

TEST(Changing, MovedRowKeepsItsIdAndFindsItsWayBack) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    auto database = std::make_unique<Database>(path, Database::Access::Write);
    Model model;
    for (int i = 0; i < 300; ++i) {
        model[database->FindTable(u"things")->Insert(Thing(i, u"short"))] = Thing(i, u"short");
    }
    for (const std::size_t size : {200u, 255u, 3u, 255u}) {
        for (auto& [id, values] : model) {
            values[4] = Text(size, u'ж');
            database->FindTable(u"things")->Update(id, values);
        }
        ExpectModel(*database->FindTable(u"things"), model);
        database->file().Commit();
        database.reset();
        ExpectSound(path);
        database = std::make_unique<Database>(path, Database::Access::Write);
    }
    Table& table = *database->FindTable(u"things");
    for (auto row = model.begin(); row != model.end(); row = model.erase(row)) table.Delete(row->first);
    ExpectModel(table, model);
    EXPECT_TRUE(UsageMap(database->file(), table.definition().owned_map).Pages().empty());
}

TEST(Changing, RulesRefuseBeforeAnythingChanges) {
    TempFolder folder;
    Database database(NewDatabase(folder), Database::Access::Write);
    Table& table = *database.FindTable(u"things");
    const RowId first = table.Insert(Thing(1, u"one"));
    table.Insert(Thing(2, u"two"));
    database.file().Commit();

    const auto insert = [&](Values values) { return FailureOf([&] { table.Insert(values); }); };
    using testing::HasSubstr;
    EXPECT_THAT(insert(Thing(1, u"again")), HasSubstr("would create duplicate values in the index"));
    Values null_key = Thing(3, u"x");
    null_key[0] = Null();
    EXPECT_THAT(insert(null_key), HasSubstr("Index or primary key cannot contain a Null value."));
    EXPECT_THAT(insert(Thing(3, Text(256, u'x'))), HasSubstr("The field is too small to accept"));
    EXPECT_THAT(insert(Thing(std::int64_t{1} << 31, u"x")), HasSubstr("Overflow: id"));
    Values wrong_kind = Thing(3, u"x");
    wrong_kind[2] = Text(u"1");
    EXPECT_THAT(insert(wrong_kind), HasSubstr("Data type mismatch in criteria expression. amount"));
    Values wrong_date = Thing(3, u"x");
    wrong_date[3] = Date{1e300};
    EXPECT_THAT(insert(wrong_date), HasSubstr("Overflow: day"));
    EXPECT_THAT(insert({Value(std::int64_t{3})}), HasSubstr("are not the same"));
    EXPECT_THAT(FailureOf([&] { table.Update(first, Thing(2, u"two")); }), HasSubstr("duplicate values"));
    EXPECT_THAT(FailureOf([&] { table.Delete({first.page, 7}); }), HasSubstr("no slot 7"));
    EXPECT_FALSE(database.file().HasChanges());

    table.Update(first, Thing(1, u"ONE"));
    table.Delete(first);
    EXPECT_THAT(FailureOf([&] { table.Find(first); }), HasSubstr("Record is deleted."));
}

TEST(Changing, StatementIsTakenBackByteForByte) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    Database database(path, Database::Access::Write);
    Table& table = *database.FindTable(u"things");
    Model model;
    for (int i = 0; i < 100; ++i) model[table.Insert(Thing(i, u"kept"))] = Thing(i, u"kept");
    const auto pages = [&] {
        std::vector<Page> all;
        for (PageNumber page = 0; page < database.file().PageCount(); ++page) {
            all.push_back(database.file().Read(page));
        }
        return all;
    };
    const std::vector<Page> before = pages();
    database.file().BeginStatement();
    for (int i = 100; i < 2000; ++i) table.Insert(Thing(i, u"gone", Text(30, u'z')));
    for (const auto& [id, values] : model) table.Delete(id);
    database.file().RollBackStatement();
    EXPECT_EQ(pages(), before);
    const Values values = Thing(5000, u"after");
    model[table.Insert(values)] = values;
    ExpectModel(table, model);
    database.file().RollBack();
    ExpectModel(table, {});
    EXPECT_FALSE(database.file().HasChanges());
    EXPECT_EQ(StampOf(path)->size, database.file().PageCount() * kPageSize);
}

TEST(Changing, AutonumberAndCountersFollow) {
    TempFolder folder;
    Database database(CopySample(folder, SamplePath("own.mdb")), Database::Access::Write);
    Table& table = *database.FindTable(u"numbered");
    const auto definition = [&] { return database.file().Read(table.definition().page).data(); };
    ASSERT_EQ(U32(definition() + 20), 8u);
    const RowId id = table.Insert(Values{Null(), Text(u"Мир")});
    EXPECT_EQ(table.Find(id).Get(0), Value(std::int64_t{9}));
    EXPECT_EQ(U32(definition() + 16), 9u);
    EXPECT_EQ(U32(definition() + 20), 9u);
    EXPECT_EQ(U32(definition() + table.definition().indexes[0].counter_at + 4), 9u);
    EXPECT_EQ(U32(definition() + table.definition().indexes[1].counter_at + 4), 8u);  // that text was there
    table.Insert(Values{std::int64_t{50}, Text(u"new")});
    EXPECT_EQ(U32(definition() + 20), 50u);
    EXPECT_THAT(FailureOf([&] {
                    table.Update(id, Values{Null(), Text(u"Мир")});
                }),
                testing::HasSubstr("assign the Null value"));
    table.Delete(id);
    EXPECT_EQ(U32(definition() + 16), 9u);
    EXPECT_EQ(U32(definition() + 20), 50u);
}

// Every sample table that may be changed: its rows once more, each changed, every third deleted.
TEST(Changing, SamplesStaySound) {
    TempFolder folder;
    int changed = 0;
    for (const Text& sample : test::SampleDatabases()) {
        SCOPED_TRACE(ToUtf8(sample));
        const Text path = CopySample(folder, sample);
        {
            Database database(path, Database::Access::Write);
            for (const TableEntry& entry : database.Tables()) {
                Table& table = *database.FindTable(entry.name);
                std::vector<std::pair<RowId, Values>> rows;
                for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
                    rows.emplace_back(scan.row().id(), scan.row().All());
                }
                const auto statement = [&](auto body) {
                    database.file().BeginStatement();
                    const std::string failure = FailureOf(body);
                    if (!failure.empty()) database.file().RollBackStatement();
                    database.file().KeepStatement();
                    changed += failure.empty() ? 1 : 0;
                };
                for (std::size_t i = 0; i < rows.size(); ++i) {
                    const Values& next = rows[(i + 1) % rows.size()].second;
                    if (i % 3 == 0) statement([&] { table.Delete(rows[i].first); });
                    if (i % 3 == 1) statement([&] { table.Update(rows[i].first, next); });
                    statement([&] { table.Insert(rows[i].second); });
                }
            }
            database.file().Commit();
        }
        ExpectSound(path);
    }
    EXPECT_GT(changed, test::SampleFolder().empty() ? 40 : 800);
}

// What stands in the samples and what we write for the same values are the same bytes, padding apart.
TEST(Changing, RowsAreEncodedAsTheyWere) {
    const std::pair<const char*, int> samples[] = {{"own.mdb", 8},
                                                   {"MultiRead.mdb", 77},
                                                   {"testUnicodeCompV2003.mdb", 8},
                                                   {"compIndexTestV2000.mdb", 512}};
    for (const auto& [name, rows] : samples) {
        if (!FileExists(SamplePath(name))) continue;
        int compared = 0;
        Database database(SamplePath(name), Database::Access::Read);
        const Text table_name = database.Tables().front().name;
        Table& table = *database.FindTable(table_name);
        const PageNumber owner = table.definition().page;
        for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next(), ++compared) {
            const RowId id = scan.row().id();
            const Page& page = ReadDataPage(database.file(), id.page, owner);
            const Record record = RecordAt(database.file(), id.page, page, id.slot);
            EncodedRow encoded;
            EncodeRow(table.definition(), scan.row().All(), encoded);
            ASSERT_EQ(record.flags, 0);
            ASSERT_EQ(encoded.bytes,
                      std::string(page.begin() + record.begin, page.begin() + record.begin + record.size))
                << name << " row " << id.page << ":" << static_cast<int>(id.slot);
        }
        EXPECT_EQ(compared, rows) << name;
    }
}

TEST(Changing, RelatedTablesAreRefused) {
    const std::pair<const char*, TextView> tables[] = {{"own.mdb", u"related"},
                                                       {"TestData.mdb", u"Person"},
                                                       {"TestData.mdb", u"Doctor"},
                                                       {"TestData.mdb", u"Patient"}};
    for (const auto& [file, name] : tables) {
        if (!FileExists(SamplePath(file))) continue;
        TempFolder folder;
        Database related(CopySample(folder, SamplePath(file)), Database::Access::Write);
        Table& table = *related.FindTable(name);
        const Values values = table.Rows().row().All();
        EXPECT_THAT(FailureOf([&] { table.Insert(values); }), testing::HasSubstr("relationship"));
        EXPECT_FALSE(related.file().HasChanges());
    }
}

}  // namespace
}  // namespace tav::jet
