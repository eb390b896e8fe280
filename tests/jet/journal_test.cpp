// Units that are interrupted: by a kill at any moment, by a full disk, by damage to the journal itself.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <set>

#include "jet/database.h"
#include "jet/jet_fixtures.h"
#include "jet/rollback_journal.h"

namespace tav::jet {
namespace {

using test::FailureOf;
using test::NewDatabase;
using test::PageOfText;
using test::TempFolder;
using test::Thing;

constexpr int kBatch = 25;  // rows of one unit

// Appends a unit of kBatch rows to both tables.
void AddUnit(Database& database, std::int64_t first) {
    for (int i = 0; i < kBatch; ++i) {
        database.FindTable(u"things")->Insert(Thing(first + i, u"name " + Digits(first + i)));
        database.FindTable(u"plain")->Insert(PageOfText());
    }
    database.file().Commit();
}

int CountRows(Database& database, TextView table) {
    int rows = 0;
    for (Table::Scan scan = database.FindTable(table)->Rows(); !scan.AtEnd(); scan.Next()) ++rows;
    return rows;
}

// The number of rows, after everything about them was seen to agree.
int WholeRows(const Text& path) {
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

Text JournalOf(const Text& path) {
    return path + u"-journal";
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

    // What a kill leaves when the first `written` changed pages had been written: the journal's bytes.
    std::string Interrupt(std::size_t written) {
        const auto page_of = [](const std::string& bytes, std::size_t page) {
            return bytes.substr(page * kPageSize, kPageSize);
        };
        RollbackJournal journal(path_, reinterpret_cast<const std::uint8_t*>(before_.data()),
                                static_cast<PageNumber>(before_.size() / kPageSize));
        std::string half = before_;
        for (std::size_t page = 0; page * kPageSize < after_.size(); ++page) {
            const std::string old =
                page_of(before_.substr(0, before_.size()) + std::string(after_.size(), '\0'), page);
            if (page_of(after_, page) == old) continue;
            if (page * kPageSize < before_.size()) {
                Page original;
                std::copy(old.begin(), old.end(), original.begin());
                journal.Add(static_cast<PageNumber>(page), original);
            }
            if (written == 0) continue;
            --written;
            half.resize(std::max(half.size(), (page + 1) * kPageSize));
            half.replace(page * kPageSize, kPageSize, page_of(after_, page));
        }
        all_written_ = written > 0;
        WriteFileWhole(path_, half);
        journal.Write();
        return ReadFile(JournalOf(path_));
    }

    TempFolder folder_;
    Text path_;
    std::string before_;
    std::string after_;
    bool all_written_ = false;
};

TEST_F(Journal, KillAfterAnyPageLeavesTheOldState) {
    for (std::size_t written = 0; !all_written_; ++written) {
        Interrupt(written);
        const auto access = written % 2 == 0 ? Database::Access::Read : Database::Access::Write;
        { Database database(path_, access); }
        ASSERT_EQ(ReadFile(path_), before_) << written;
        ASSERT_FALSE(FileExists(JournalOf(path_)));
        ASSERT_LT(written, 200u);
    }
    EXPECT_EQ(WholeRows(path_), kBatch);
}

TEST_F(Journal, TornOrForeignJournalIsIgnoredAndDeleted) {
    const std::string journal = Interrupt(0);
    std::vector<std::string> useless = {"", journal.substr(0, 20), journal.substr(0, journal.size() - 1),
                                        journal + "x", journal.substr(0, journal.size() / 2)};
    for (const std::size_t at : {0u, 17u, 21u, 30u, 1000u}) {
        useless.push_back(journal);
        useless.back()[at] = static_cast<char>(useless.back()[at] ^ 1);
    }
    for (const std::string& bytes : useless) {
        WriteFileWhole(path_, after_);
        WriteFileWhole(JournalOf(path_), bytes);
        { Database database(path_, Database::Access::Read); }
        EXPECT_EQ(ReadFile(path_), after_);
        EXPECT_FALSE(FileExists(JournalOf(path_)));
    }
    // The journal of another database: its header differs.
    std::string other = after_;
    other[0x30] = static_cast<char>(other[0x30] ^ 1);
    WriteFileWhole(path_, other);
    WriteFileWhole(JournalOf(path_), journal);
    { Database database(path_, Database::Access::Write); }
    EXPECT_EQ(ReadFile(path_), other);
}

TEST_F(Journal, ReaderCannotUndoWhileOthersRead) {
    const std::string journal = Interrupt(3);
    const LockedFile other(path_, LockedFile::Access::Read);
    EXPECT_THAT(FailureOf([&] { Database(path_, Database::Access::Read); }),
                testing::HasSubstr("file already in use"));
    EXPECT_EQ(ReadFile(JournalOf(path_)), journal);
}

// A child adds units until it is killed, at a moment of its own choosing.
TEST_F(Journal, KilledProcessLeavesWholeUnits) {
    for (unsigned microseconds = 500; microseconds < 60000; microseconds += 2900) {
        WriteFileWhole(path_, before_);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            Database database(path_, Database::Access::Write);
            for (std::int64_t first = kBatch;; first += kBatch) AddUnit(database, first);
        }
        ::usleep(microseconds);
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_GE(WholeRows(path_), kBatch);
        ASSERT_FALSE(HasFailure()) << microseconds;
    }
}

// In a child: a unit while no file may be written beyond `limit` bytes, then the same unit again. 0 when the
// first failed as a full disk, left all as it was, and the second went well; 2 when the old state could not
// be written back either, and nothing may be done with the open database any more.
int UnitOnFullDisk(const Text& path, std::size_t limit, const std::string& before, const std::string& after) {
    ::signal(SIGXFSZ, SIG_IGN);
    Database database(path, Database::Access::Write);
    const auto limit_files = [](rlim_t bytes) {
        const rlimit files{bytes, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &files);
    };
    limit_files(limit);
    const std::string failure = FailureOf([&] { AddUnit(database, kBatch); });
    limit_files(RLIM_INFINITY);
    if (failure.find("Disk full") == std::string::npos) return 1;
    if (FileExists(JournalOf(path))) {
        const std::string refusal = FailureOf([&] { AddUnit(database, kBatch); });
        return refusal.find("open it again") != std::string::npos ? 2 : 1;
    }
    if (ReadFile(path) != before || CountRows(database, u"things") != kBatch) return 1;
    AddUnit(database, kBatch);
    return ReadFile(path) == after ? 0 : 1;
}

TEST_F(Journal, FullDiskLeavesEverythingAsItWas) {
    std::set<int> results;
    for (std::size_t limit = 0; limit < after_.size(); limit += 2 * kPageSize + 100) {
        WriteFileWhole(path_, before_);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            int result = 1;
            FailureOf([&] { result = UnitOnFullDisk(path_, limit, before_, after_); });
            ::_exit(result);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status));
        results.insert(WEXITSTATUS(status));
        EXPECT_NE(WEXITSTATUS(status), 1) << limit;
        EXPECT_EQ(WholeRows(path_), WEXITSTATUS(status) == 0 ? 2 * kBatch : kBatch);
    }
    EXPECT_EQ(results, (std::set<int>{0, 2}));
}

}  // namespace
}  // namespace tav::jet
