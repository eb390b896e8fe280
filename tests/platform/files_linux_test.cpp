// What only Linux has: links, rights by mode bits, two kinds of locks, limits of file sizes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/files.h"
#include "platform/locked_file.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

using test::ErrorOf;
using test::TempFolder;

TEST(LinuxFolders, ListingTakesLinksAndNamesOfAnyBytes) {
    const TempFolder folder;
    folder.Write(u"A.RTF", "x");
    folder.Write(FromUtf8("\xFF.rtf"), "x");
    ASSERT_EQ(::symlink(ToUtf8(folder / u"A.RTF").c_str(), ToUtf8(folder / u"link.rtf").c_str()), 0);
    EXPECT_EQ(ListFiles(folder.path(), u".rtf"),
              (std::vector<Text>{u"A.RTF", u"link.rtf", FromUtf8("\xFF.rtf")}));
}

TEST(LinuxFolders, TheSameThroughALink) {
    const TempFolder folder;
    MakeFolders(folder / u"a/x");
    ASSERT_EQ(::symlink(ToUtf8(folder / u"a").c_str(), ToUtf8(folder / u"link").c_str()), 0);
    EXPECT_TRUE(SameFolder(folder / u"a", folder / u"link/"));
}

TEST(LinuxFiles, KeepRightsAndLinks) {
    const TempFolder folder;
    const Text path = folder / u"отчёт.doc";
    WriteFileWhole(path, "one");
    ASSERT_EQ(::chmod(ToUtf8(path).c_str(), 0640), 0);
    WriteFileWhole(path, "two");
    EXPECT_EQ(ReadFile(path), "two");
    struct stat status {};
    ASSERT_EQ(::stat(ToUtf8(path).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    ASSERT_EQ(::symlink(ToUtf8(path).c_str(), ToUtf8(folder / u"link").c_str()), 0);
    WriteFileWhole(folder / u"link", "three");
    EXPECT_EQ(ReadFile(path), "three");
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 2u);  // nothing temporary is left
}

TEST(LinuxFiles, AreWrittenWithTheRightsOfAnother) {
    const TempFolder folder;
    const Text like = folder.Write(u"like", "");
    ASSERT_EQ(::chmod(ToUtf8(like).c_str(), 0662), 0);
    NewFile(like, folder / u"x").Finish();
    struct stat status {};
    ASSERT_EQ(::stat(ToUtf8(folder / u"x").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0662u);
}

TEST(LinuxFiles, RealPathGoesThroughLinks) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "");
    ASSERT_EQ(::symlink("x", ToUtf8(folder / u"link").c_str()), 0);
    EXPECT_EQ(RealPath(folder / u"link"), RealPath(path));
    EXPECT_EQ(RealPath(folder / u"none"), folder / u"none");
}

// A process does not see its own record locks, so a child looks.
TEST(LinuxFiles, AreHeldByEitherKindOfLock) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "");
    const auto held_for_a_child = [&] {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(IsHeld(path) ? 1 : 0);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WEXITSTATUS(status) == 1;
    };
    EXPECT_FALSE(held_for_a_child());
    {
        const LockedFile holder(path, LockedFile::Access::Read);
        EXPECT_TRUE(held_for_a_child());
    }
    const int file = ::open(ToUtf8(path).c_str(), O_RDWR);
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_start = 0x10000001;
    range.l_len = 1;
    ASSERT_EQ(::fcntl(file, F_SETLK, &range), 0);
    EXPECT_TRUE(held_for_a_child());
    ::close(file);
}

TEST(LinuxFiles, FullDiskLeavesTheOldFile) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "old");
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit small{4096, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string large(100000, 'x');
    EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, large); }), RunTimeError::DiskFull);
    EXPECT_EQ(ErrorOf([&] { NewFile(path, folder / u"y").Write(large); }), RunTimeError::DiskFull);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 1u);
}

TEST(LinuxFiles, MoveReplacesOnAnotherFileSystem) {
    const TempFolder folder;
    folder.Write(u"b", "1");
    struct stat here {};
    struct stat there {};
    if (::stat("/dev/shm", &there) != 0 || ::stat(ToUtf8(folder.path()).c_str(), &here) != 0 ||
        here.st_dev == there.st_dev) {
        GTEST_SKIP() << "no second file system at hand";
    }
    const Text far = u"/dev/shm/tav-test-" + Digits(::getpid());
    ASSERT_EQ(::chmod(ToUtf8(folder / u"b").c_str(), 0600), 0);
    // A link that leads back to the source is replaced, not followed.
    ASSERT_EQ(::symlink(ToUtf8(folder / u"b").c_str(), ToUtf8(far).c_str()), 0);
    MoveFileOver(folder / u"b", far);
    ASSERT_EQ(::stat(ToUtf8(far).c_str(), &there), 0);
    EXPECT_EQ(there.st_mode & 0777, 0600u);
    EXPECT_EQ(ReadFile(far), "1");
    EXPECT_FALSE(FileExists(folder / u"b"));
    DeleteFile(far);
}

}  // namespace
}  // namespace tav
