// A database whose second unit was interrupted: at any page, with the journal that a kill leaves.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "jet/file/rollback_journal.h"
#include "jet/jet_fixtures.h"
#include "jet/table/database.h"

namespace tav::jet {

using test::FailureOf;
using test::NewDatabase;
using test::PageOfText;
using test::TempFolder;
using test::Thing;

constexpr int kBatch = 25;  // rows of one unit

// Appends a unit of kBatch rows to both tables.
inline void AddUnit(Database& database, std::int64_t first) {
    for (int i = 0; i < kBatch; ++i) {
        database.FindTable(u"things")->Insert(Thing(first + i, u"name " + Digits(first + i)));
        database.FindTable(u"plain")->Insert(PageOfText());
    }
    database.file().Commit();
}

inline int CountRows(Database& database, TextView table) {
    int rows = 0;
    for (Table::Scan scan = database.FindTable(table)->Rows(); !scan.AtEnd(); scan.Next()) ++rows;
    return rows;
}

// The number of rows, after everything about them was seen to agree.
inline int WholeRows(const Text& path) {
    { const Database recovered(path, Database::Access::Read); }
    test::ExpectSound(path);
    Database database(path, Database::Access::Read);
    const int rows = CountRows(database, u"things");
    EXPECT_EQ(rows % kBatch, 0);
    EXPECT_EQ(CountRows(database, u"plain"), rows);
    int entries = 0;
    IndexTree tree = database.FindTable(u"things")->Index(0);
    for (IndexTree::Cursor cursor = tree.First(); !cursor.AtEnd(); cursor.Next()) ++entries;
    EXPECT_EQ(entries, rows);
    return rows;
}

inline Text JournalOf(const Text& path) {
    return path + u"-journal";
}

inline PageNumber PagesOf(const std::string& bytes) {
    return static_cast<PageNumber>(bytes.size() / kPageSize);
}

class Journal : public testing::Test {
 protected:
    void SetUp() override {
        path_ = NewDatabase(folder_);
        {
            Database database(path_, Database::Access::Write);
            AddUnit(database, 0);
        }
        before_ = ReadFile(path_);
        {
            Database database(path_, Database::Access::Write);
            AddUnit(database, kBatch);
        }
        after_ = ReadFile(path_);
        ASSERT_FALSE(FileExists(JournalOf(path_)));
    }

    // What a kill leaves when the first `written` changed pages had been written, the last of them to the
    // half: the journal's bytes.
    std::string Interrupt(std::size_t written) {
        const auto page_of = [](const std::string& bytes, PageNumber page) {
            Page found{};
            if (page < PagesOf(bytes)) std::copy_n(bytes.data() + Offset(page), kPageSize, found.begin());
            return found;
        };
        std::size_t images = 0;
        for (PageNumber page = 0; page < PagesOf(before_); ++page) {
            images += page_of(before_, page) != page_of(after_, page);
        }
        RollbackJournal journal(path_, reinterpret_cast<const std::uint8_t*>(before_.data()),
                                PagesOf(before_), PagesOf(after_), images);
        std::string half = before_;
        for (PageNumber page = 0; page < PagesOf(after_); ++page) {
            const Page original = page_of(before_, page);
            const Page changed = page_of(after_, page);
            if (changed == original) continue;
            if (page < PagesOf(before_)) journal.Add(page, original, changed);
            if (written == 0) continue;
            const std::size_t size = written == 1 ? kPageSize / 2 : kPageSize;
            --written;
            half.resize(std::max(half.size(), Offset(page) + size));
            std::copy_n(changed.begin(), size, half.data() + Offset(page));
        }
        all_written_ = written > 0;
        WriteFileWhole(path_, half);
        journal.Finish();
        return ReadFile(JournalOf(path_));
    }

    TempFolder folder_;
    Text path_;
    std::string before_;
    std::string after_;
    bool all_written_ = false;
};

}  // namespace tav::jet
