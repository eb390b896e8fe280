#include "platform/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "common/failure.h"
#include "support/support.h"

namespace tav {
namespace {

using test::TempFolder;

RunTimeError ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.error();
    }
    ADD_FAILURE() << "no failure";
    return RunTimeError::Other;
}

TEST(Paths, Pieces) {
    EXPECT_EQ(WithSeparator(u"/a"), u"/a/");
    EXPECT_EQ(WithSeparator(u"/a/"), u"/a/");
    EXPECT_EQ(WithSeparator(u""), u"");
    EXPECT_EQ(FolderOf(u"/a/b.rtf"), u"/a/");
    EXPECT_EQ(NameOf(u"/a/b.rtf"), u"b.rtf");
    EXPECT_EQ(NameOf(u"b.rtf"), u"b.rtf");
    EXPECT_EQ(UserPath(u"no\\such/folder"), u"no/such/folder");
}

TEST(Folders, AreMadeFromTheRootDown) {
    const TempFolder folder;
    MakeFolders(folder / u"один/two words/x.doc");
    EXPECT_TRUE(FolderExists(folder / u"один/two words"));
    EXPECT_FALSE(FileExists(folder / u"один/two words/x.doc"));
    folder.Write(u"file", "");
    EXPECT_NO_THROW(MakeFolders(folder / u"x"));
    EXPECT_EQ(ErrorOf([&] { MakeFolders(folder / u"file/sub/x"); }), RunTimeError::PathNotFound);
}

TEST(Folders, ListingIsSortedWithoutRegardToCase) {
    const TempFolder folder;
    for (const TextView name :
         {u"б.rtf", u"A.RTF", u"a2.rtf", u"А.Rtf", u".hidden.rtf", u"x.rtfx", u"y.xml", u"Z.rtf"})
        folder.Write(name, "x");
    folder.Write(FromUtf8("\xFF.rtf"), "x");
    MakeFolders(folder / u"folder.rtf/x");
    ASSERT_EQ(::symlink(ToUtf8(folder / u"A.RTF").c_str(), ToUtf8(folder / u"link.rtf").c_str()), 0);
    EXPECT_EQ(ListFiles(folder.path(), u".rtf"),
              (std::vector<Text>{u".hidden.rtf", u"A.RTF", u"a2.rtf", u"link.rtf", u"Z.rtf", u"А.Rtf",
                                 u"б.rtf", FromUtf8("\xFF.rtf")}));
    EXPECT_TRUE(ListFiles(folder / u"none", u".rtf").empty());
}

TEST(Folders, TheSameByWhateverPath) {
    const TempFolder folder;
    MakeFolders(folder / u"a/b/x");
    ASSERT_EQ(::symlink(ToUtf8(folder / u"a").c_str(), ToUtf8(folder / u"link").c_str()), 0);
    EXPECT_TRUE(SameFolder(folder / u"a", folder / u"link/"));
    EXPECT_TRUE(SameFolder(folder / u"a/b/..", folder / u"a/"));
    EXPECT_FALSE(SameFolder(folder / u"a", folder / u"a/b"));
    EXPECT_FALSE(SameFolder(folder / u"none", folder / u"none"));
}

TEST(Files, AreWrittenWhole) {
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
    for (const std::size_t most : {0, 3, 5, 9})
        EXPECT_EQ(ReadFileHead(path, most), std::string("three").substr(0, most));
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 2u);  // nothing temporary is left
}

TEST(Files, AreWrittenWithTheRightsOfAnother) {
    const TempFolder folder;
    const Text like = folder.Write(u"like", "");
    ASSERT_EQ(::chmod(ToUtf8(like).c_str(), 0662), 0);
    for (const std::string_view bytes : {"long", "new"}) {
        WriteFileLike(like, folder / u"x", bytes);
        EXPECT_EQ(ReadFile(folder / u"x"), bytes);
    }
    struct stat status {};
    ASSERT_EQ(::stat(ToUtf8(folder / u"x").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0662u);
}

TEST(Files, RealPathGoesThroughLinks) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "");
    ASSERT_EQ(::symlink("x", ToUtf8(folder / u"link").c_str()), 0);
    EXPECT_EQ(RealPath(folder / u"link"), RealPath(path));
    EXPECT_EQ(RealPath(folder / u"none"), folder / u"none");
}

// A process does not see its own record locks, so a child looks.
TEST(Files, AreHeldByEitherKindOfLock) {
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

TEST(Files, HeldByAnotherAreNotReplaced) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "old");
    const LockedFile holder(path, LockedFile::Access::Write);
    EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, "new"); }), RunTimeError::PermissionDenied);
    EXPECT_EQ(ErrorOf([&] { LockedFile(path, LockedFile::Access::Read); }), RunTimeError::PermissionDenied);
    EXPECT_EQ(ReadFile(path), "old");
}

TEST(Files, FullDiskLeavesTheOldFile) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "old");
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit small{4096, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string large(100000, 'x');
    EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, large); }), RunTimeError::DiskFull);
    EXPECT_EQ(ErrorOf([&] { WriteFileLike(path, folder / u"y", large); }), RunTimeError::DiskFull);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 1u);
}

TEST(Files, RefusalsNameThePath) {
    const TempFolder folder;
    EXPECT_EQ(ErrorOf([&] { ReadFile(folder / u"none"); }), RunTimeError::FileNotFound);
    EXPECT_EQ(ErrorOf([&] { ReadFileHead(folder.path(), 9); }), RunTimeError::PathFileAccess);
    EXPECT_EQ(ErrorOf([&] { ReadFile(folder / u"none/x"); }), RunTimeError::PathNotFound);
    EXPECT_EQ(ErrorOf([&] { ReadFile(folder.path()); }), RunTimeError::PathFileAccess);
    try {
        DeleteFile(folder / u"нет");
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), u"File not found: " + (folder / u"нет"));
    }
}

TEST(Files, MoveReplacesAlsoOntoAnotherFileSystem) {
    const TempFolder folder;
    const Text near = folder.Write(u"a", "1");
    folder.Write(u"b", "old");
    MoveFileOver(near, folder / u"b");
    EXPECT_EQ(ReadFile(folder / u"b"), "1");
    EXPECT_FALSE(FileExists(near));

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

TEST(LockedFiles, ReadersShareAWriterIsAlone) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "0123456789");
    {
        LockedFile first(path, LockedFile::Access::Read);
        LockedFile second(path, LockedFile::Access::Read);
        EXPECT_FALSE(first.TryExclusive());
        EXPECT_EQ(ErrorOf([&] { LockedFile(path, LockedFile::Access::Write); }),
                  RunTimeError::PermissionDenied);
    }
    LockedFile file(path, LockedFile::Access::Write);
    char four[4];
    file.WriteAt(8, "ABCD", 4);
    file.ReadAt(8, four, 4);
    EXPECT_EQ(std::string(four, 4), "ABCD");
    EXPECT_EQ(file.Size(), 12u);
    EXPECT_EQ(ErrorOf([&] { file.ReadAt(10, four, 4); }), RunTimeError::PathFileAccess);
    file.Truncate(2);
    EXPECT_EQ(file.Size(), 2u);
}

}  // namespace
}  // namespace tav
