// Samples, and a database that consists of index pages for the most part, with bytes changed at random:
// whatever they say, only Failures may come out, which name the file, and findings of the checker.
#include <algorithm>
#include <random>

#include "jet/jet_fixtures.h"
#include "jet/jet_samples.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using test::FailureOf;
using test::SampleDatabases;
using test::TempFolder;
using test::Values;

// An index of three levels.
std::string WithDeepIndex(std::mt19937& random) {
    const TempFolder folder;
    const Text path = test::NewDatabase(folder);
    {
        Database database(path, Database::Access::Write);
        for (int id = 0; id < 200; ++id) {
            Text name(200, u'а');
            for (char16_t& letter : name) letter = static_cast<char16_t>(u'А' + random() % 20);
            database.FindTable(u"things")->Insert(test::Thing(id, name));
        }
        database.file().Commit();
        EXPECT_EQ(database.file().Read(database.FindTable(u"things")->definition().indexes[1].root)[26], 2);
    }
    return ReadFile(path);
}

std::string Damage(std::string bytes, std::mt19937& random) {
    const unsigned changes = 1 + random() % 24;
    const std::size_t pages = bytes.size() / kPageSize;
    for (unsigned i = 0; i < changes; ++i) {
        // Headers and slot tables first of all, and the bytes at a page's end, where rows and maps stand.
        const std::size_t page = random() % pages;
        const std::size_t in_page = random() % 3 == 0   ? random() % kPageSize
                                    : random() % 2 == 0 ? random() % 128
                                                        : kPageSize - 1 - random() % 256;
        char& byte = bytes[page * kPageSize + in_page];
        byte = static_cast<char>(random() % 2 == 0 ? byte ^ 1 << random() % 8 : random());
    }
    return bytes;
}

// Reads, inserts, updates and deletes. The number of failures met.
int Use(Database& database, const TableEntry& entry) {
    int failures = 0;
    const auto attempt = [&](auto body) {
        const std::string words = FailureOf(body);
        failures += words.empty() ? 0 : 1;
        EXPECT_EQ(words.find("is damaged") == words.npos, words.find("victim.mdb") == words.npos) << words;
    };
    Table* table = nullptr;
    attempt([&] { table = database.FindTable(entry.name); });
    if (table == nullptr) return failures;
    std::vector<RowId> ids;
    Values row(table->definition().columns.size());
    attempt([&] {
        for (Table::Scan scan = table->Rows(); !scan.AtEnd() && ids.size() < 100000; scan.Next()) {
            ids.push_back(scan.row().id());
            attempt([&] { row = scan.row().All(); });
        }
    });
    for (std::size_t i = 0; i < table->definition().indexes.size(); ++i) {
        IndexTree tree = table->Index(i);
        attempt([&] {
            for (IndexTree::Cursor at = tree.First(); !at.AtEnd(); at.Next()) {
            }
        });
        attempt([&] { tree.Seek("\x7F\x80"); });
    }
    const auto statement = [&](auto body) {
        database.file().BeginStatement();
        if (const int before = failures; attempt(body), failures > before)
            database.file().RollBackStatement();
        database.file().KeepStatement();
    };
    for (int i = 0; i < 20; ++i) statement([&] { table->Insert(row); });
    for (std::size_t i = 0; i < ids.size() && i < 30; ++i) {
        statement([&] { table->Update(ids[i], row); });
        statement([&] { table->Delete(ids[ids.size() - 1 - i]); });
    }
    return failures;
}

TEST(Damage, OnlyFailuresComeOut) {
    TempFolder folder;
    std::mt19937 random(4096);
    int refused = 0;
    int failures = 0;
    int found = 0;
    int rounds_made = 0;
    std::vector<std::string> files = {WithDeepIndex(random)};
    for (const Text& sample : SampleDatabases()) files.push_back(ReadFile(sample));
    for (const std::string& good : files) {
        const int rounds = &good == files.data() ? 80 : good.size() > (1 << 20) ? 10 : 30;
        for (int round = 0; round < rounds; ++round, ++rounds_made) {
            const Text path = folder.Write(u"victim.mdb", Damage(good, random));
            found += std::ranges::any_of(CheckDatabase(path), &Finding::error) ? 1 : 0;
            const std::string refusal = FailureOf([&] {
                Database database(path, Database::Access::Write);
                for (const TableEntry& table : database.Tables()) failures += Use(database, table);
                database.file().Commit();
            });
            refused += refusal.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(found, rounds_made / 2);
    EXPECT_GT(refused, rounds_made / 20);
    EXPECT_GT(failures, rounds_made);
}

}  // namespace
}  // namespace tav::jet
