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

PageNumber PagesOf(const std::string& bytes) {
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
            if (page < PagesOf(bytes))
                std::copy_n(bytes.begin() + page * kPageSize, kPageSize, found.begin());
            return found;
        };
        RollbackJournal journal(path_, reinterpret_cast<const std::uint8_t*>(before_.data()),
                                PagesOf(before_), PagesOf(after_));
        std::string half = before_;
        for (PageNumber page = 0; page < PagesOf(after_); ++page) {
            const Page original = page_of(before_, page);
            const Page changed = page_of(after_, page);
            if (changed == original) continue;
            if (page < PagesOf(before_)) journal.Add(page, original, changed);
            if (written == 0) continue;
            const std::size_t size = written == 1 ? kPageSize / 2 : kPageSize;
            --written;
            half.resize(std::max(half.size(), page * kPageSize + size));
            std::copy_n(changed.begin(), size, half.begin() + page * kPageSize);
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

// Also when the file is found through a link.
TEST_F(Journal, KillAfterAnyPageLeavesTheOldState) {
    MakeFolders(folder_ / u"links/new.mdb");
    const Text link = folder_ / u"links/new.mdb";
    ASSERT_EQ(::symlink(ToUtf8(path_).c_str(), ToUtf8(link).c_str()), 0);
    for (std::size_t written = 0; !all_written_; ++written) {
        Interrupt(written);
        const auto access = written % 2 == 0 ? Database::Access::Read : Database::Access::Write;
        { Database database(written % 3 == 0 ? link : path_, access); }
        ASSERT_EQ(ReadFile(path_), before_) << written;
        ASSERT_FALSE(FileExists(JournalOf(path_)));
        ASSERT_LT(written, 200u);
    }
    EXPECT_EQ(WholeRows(path_), kBatch);
}

TEST_F(Journal, TornJournalIsIgnoredAndDeleted) {
    const std::string journal = Interrupt(0);
    std::vector<std::string> useless = {"", journal.substr(0, 20), journal.substr(0, journal.size() - 1),
                                        journal + "x", journal.substr(0, journal.size() / 2)};
    for (const std::size_t at : {0u, 17u, 21u, 25u, 33u, 1000u}) {
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
}

TEST_F(Journal, JournalOfAnotherStateIsRefusedAndKept) {
    const std::string journal = Interrupt(0);
    const auto changed = [](std::string bytes, std::size_t at) {
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
        return bytes;
    };
    const TempFolder other;
    const std::string empty = ReadFile(NewDatabase(other));
    {
        Database database(path_, Database::Access::Write);
        AddUnit(database, kBatch);
        AddUnit(database, 2 * kBatch);
    }
    const std::string later = ReadFile(path_);
    ASSERT_GT(later.size(), after_.size());
    const std::size_t page = U32(reinterpret_cast<const std::uint8_t*>(journal.data()) + 40);
    const std::string states[] = {changed(after_, 0x30),
                                  changed(before_, page * kPageSize + 700),
                                  changed(after_, (page + 1) * kPageSize - 1),
                                  later,
                                  after_ + std::string(kPageSize, '\0'),
                                  before_.substr(0, before_.size() - kPageSize),
                                  empty,
                                  empty + std::string(before_.size() - empty.size(), '\0')};
    for (const std::string& state : states) {
        for (const auto access : {Database::Access::Read, Database::Access::Write}) {
            WriteFileWhole(path_, state);
            WriteFileWhole(JournalOf(path_), journal);
            EXPECT_THAT(FailureOf([&] { Database(path_, access); }),
                        testing::AllOf(testing::HasSubstr("'" + ToUtf8(JournalOf(path_)) + "'"),
                                       testing::HasSubstr("'" + ToUtf8(path_) + "'"),
                                       testing::HasSubstr("another state")));
            EXPECT_EQ(ReadFile(path_), state);
            EXPECT_EQ(ReadFile(JournalOf(path_)), journal);
        }
    }
}

// A power loss may bring back the name of a file that was deleted.
TEST_F(Journal, ResurrectedJournalIsInvalid) {
    Interrupt(3);
    const Text kept = folder_ / u"kept";
    ASSERT_EQ(::link(ToUtf8(JournalOf(path_)).c_str(), ToUtf8(kept).c_str()), 0);
    { Database database(path_, Database::Access::Write); }
    MoveFileOver(kept, JournalOf(path_));
    WriteFileWhole(path_, after_);
    { Database database(path_, Database::Access::Write); }
    EXPECT_EQ(ReadFile(path_), after_);
    EXPECT_FALSE(FileExists(JournalOf(path_)));
}

TEST_F(Journal, ReaderCannotUndoWhileOthersUseTheFile) {
    const std::string journal = Interrupt(3);
    for (const Text& used : {path_, folder_.Write(u"new.ldb", "users")}) {
        const LockedFile other(used, LockedFile::Access::Read);
        EXPECT_THAT(FailureOf([&] { Database(path_, Database::Access::Read); }),
                    testing::HasSubstr("file already in use"));
        EXPECT_EQ(ReadFile(JournalOf(path_)), journal);
    }
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
