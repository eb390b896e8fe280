// Units that are interrupted in processes of their own: by a real kill, by a full disk; and through a link.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <set>

#include "jet/file/journal_fixture.h"

namespace tav::jet {
namespace {

using LinuxJournal = Journal;

TEST_F(LinuxJournal, IsFoundThroughALink) {
    MakeFolders(folder_ / u"links/new.mdb");
    const Text link = folder_ / u"links/new.mdb";
    ASSERT_EQ(::symlink(ToUtf8(path_).c_str(), ToUtf8(link).c_str()), 0);
    for (const auto access : {Database::Access::Read, Database::Access::Write}) {
        Interrupt(3);
        { Database database(link, access); }
        EXPECT_EQ(ReadFile(path_), before_);
        EXPECT_FALSE(FileExists(JournalOf(path_)));
    }
}

// A child adds units until it is killed, at a moment of its own choosing.
TEST_F(LinuxJournal, KilledProcessLeavesWholeUnits) {
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

TEST_F(LinuxJournal, FullDiskLeavesEverythingAsItWas) {
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
