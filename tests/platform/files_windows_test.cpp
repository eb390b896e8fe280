// What only Windows has: share modes, attributes, long paths, two separators.
#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/locked_file.h"
#include "platform/win32_windows.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

using test::ErrorOf;
using test::TempFolder;

TEST(WindowsPaths, BothSeparatorsAreUnderstood) {
    EXPECT_EQ(FolderOf(u"C:\\a/b\\c.rtf"), u"C:\\a/b\\");
    EXPECT_EQ(NameOf(u"C:\\a/b.rtf"), u"b.rtf");
    EXPECT_EQ(UserPath(u"no/such\\folder"), u"no\\such\\folder");
    EXPECT_EQ(win32::NativePath(u"C:/a/../b\\"), L"\\\\?\\C:\\b");
    EXPECT_EQ(win32::NativePath(u"C:\\"), L"\\\\?\\C:\\");
    EXPECT_EQ(win32::NativePath(u"\\\\server\\share\\x"), L"\\\\?\\UNC\\server\\share\\x");
    EXPECT_EQ(win32::NativePath(u"\\\\?\\C:\\x"), L"\\\\?\\C:\\x");
}

TEST(WindowsPaths, AreAsLongAsTheyAre) {
    const TempFolder folder;
    Text path = folder.path();
    for (int i = 0; i < 5; ++i) path += Text(100, u'ж') + u"\\";
    path += u"\u0418\u0306 \xD83D\xDE00.rtf";
    MakeFolders(path);
    WriteFileWhole(path, "one");
    WriteFileWhole(path, "two");
    EXPECT_EQ(ReadFile(path), "two");
    EXPECT_EQ(ListFiles(FolderOf(path), u".RTF"), std::vector<Text>{NameOf(path)});
    EXPECT_TRUE(SameFolder(FolderOf(path), FolderOf(path) + u"..\\" + Text(100, u'ж')));
    MoveFileOver(path, folder / u"x");
    EXPECT_EQ(ReadFile(folder / u"x"), "two");
}

TEST(WindowsPaths, LetterCaseIsNoDifference) {
    const TempFolder folder;
    MakeFolders(folder / u"Папка/x");
    EXPECT_TRUE(SameFolder(folder / u"Папка", folder / u"пАПКА/"));
    WriteFileWhole(folder / u"Ёж.doc", "x");
    WriteFileWhole(folder / u"ёЖ.DOC", "y");
    EXPECT_EQ(ListFiles(folder.path(), u"ЁЖ.doc").size(), 1u);
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 1u);
    EXPECT_EQ(ReadFile(folder / u"Ёж.doc"), "y");
}

// A short name would match the pattern "*.rtf".
TEST(WindowsFolders, ListingLooksAtLongNamesOnly) {
    const TempFolder folder;
    for (const TextView name : {u"1.rtf", u"2.rtfx", u"3.rtf~", u"4 a long name.rtf_old"})
        folder.Write(name, "");
    EXPECT_EQ(ListFiles(folder.path(), u".rtf"), std::vector<Text>{u"1.rtf"});
    EXPECT_EQ(ErrorOf([&] { MakeFolders(u"Q:\\none\\x"); }), RunTimeError::PathNotFound);
}

TEST(WindowsFiles, OpenInAnotherProgramAreNotReplaced) {
    const TempFolder folder;
    const Text path = folder.Write(u"отчёт.doc", "old");
    const Text source = folder.Write(u"new", "new");
    for (const DWORD share : {DWORD{0}, DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
        const win32::Handle word = win32::OpenFile(path, GENERIC_READ | GENERIC_WRITE, share);
        EXPECT_TRUE(IsHeld(path));
        EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, "new"); }), RunTimeError::PermissionDenied);
        EXPECT_EQ(ErrorOf([&] { MoveFileOver(source, path); }), RunTimeError::PermissionDenied);
        EXPECT_EQ(ErrorOf([&] { DeleteFile(path); }), RunTimeError::PermissionDenied);
        EXPECT_EQ(ErrorOf([&] { LockedFile(path, LockedFile::Access::Read); }),
                  RunTimeError::PermissionDenied);
    }
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(ReadFile(source), "new");
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 2u);
}

TEST(WindowsFiles, ReadOnlyOnesStay) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "old");
    const std::wstring native = win32::NativePath(path);
    ASSERT_TRUE(::SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, "new"); }), RunTimeError::PermissionDenied);
    EXPECT_TRUE(LockedFile(path, LockedFile::Access::Read).TryExclusive());
    EXPECT_FALSE(IsHeld(path));
    EXPECT_EQ(ReadFile(path), "old");
    // Wine lets the superuser write such files.
    const win32::Handle anyway(
        ::CreateFileW(native.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!anyway) {
        EXPECT_EQ(ErrorOf([&] { LockedFile(path, LockedFile::Access::Write); }),
                  RunTimeError::PermissionDenied);
    }
    ASSERT_TRUE(::SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_NORMAL));
}

// Wine's drive Z: is the whole of the machine it runs on.
TEST(WindowsFiles, MoveOntoAnotherDrive) {
    const TempFolder folder;
    const Text there = u"Z:\\dev\\shm\\";
    if (!FolderExists(there)) GTEST_SKIP() << "no second drive";
    const Text target = there + NameOf(folder.path().substr(0, folder.path().size() - 1));
    const Text source = folder.Write(u"a", "1");
    ASSERT_TRUE(::SetFileAttributesW(win32::NativePath(source).c_str(), FILE_ATTRIBUTE_READONLY));
    MoveFileOver(source, target);
    EXPECT_EQ(ReadFile(target), "1");
    EXPECT_FALSE(FileExists(source));
    ::SetFileAttributesW(win32::NativePath(target).c_str(), FILE_ATTRIBUTE_NORMAL);
    {
        const LockedFile holder(target, LockedFile::Access::Read);
        const Text other = folder.Write(u"b", "2");
        ASSERT_TRUE(::SetFileAttributesW(win32::NativePath(other).c_str(), FILE_ATTRIBUTE_READONLY));
        EXPECT_EQ(ErrorOf([&] { MoveFileOver(other, target); }), RunTimeError::PermissionDenied);
    }
    EXPECT_EQ(ReadFile(folder / u"b"), "2");
    EXPECT_EQ(ReadFile(target), "1");
    const Text own = u".tav-tmp-" + Digits(::GetCurrentProcessId());
    for (const Text& name : ListFiles(there, u"")) EXPECT_FALSE(name.starts_with(own)) << ToUtf8(name);
    DeleteFile(target);
}

}  // namespace
}  // namespace tav
