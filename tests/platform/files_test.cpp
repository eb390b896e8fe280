#include "platform/files.h"

#include <gtest/gtest.h>

#include "platform/environment.h"
#include "platform/locked_file.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

using test::ErrorOf;
using test::TempFolder;

TEST(Paths, Pieces) {
    EXPECT_EQ(WithSeparator(u"/a"), Text(u"/a") + kPathSeparator);
    EXPECT_EQ(WithSeparator(u"/a/"), u"/a/");
    EXPECT_EQ(WithSeparator(u""), u"");
    EXPECT_EQ(FolderOf(u"/a/b.rtf"), u"/a/");
    EXPECT_EQ(NameOf(u"/a/b.rtf"), u"b.rtf");
    EXPECT_EQ(NameOf(u"b.rtf"), u"b.rtf");
    EXPECT_EQ(UserPath(u"no\\such/folder"),
              ReplaceAll(u"no/such/folder", u"/", TextView(&kPathSeparator, 1)));
    // As it is pasted from elsewhere.
    const Text there = UserPath(u"/no/such a");
    for (const TextView pasted :
         {u" \"/no/such a\" ", u"'/no/such a'", u"file:///no/such%20a", u"FILE:///no/such a"}) {
        EXPECT_EQ(UserPath(pasted), there);
    }
    EXPECT_EQ(UserPath(u"~/no/such"), UserPath(HomeFolder() + u"/no/such"));
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
    MakeFolders(folder / u"folder.rtf/x");
    EXPECT_EQ(ListFiles(folder.path(), u".rtf"),
              (std::vector<Text>{u".hidden.rtf", u"A.RTF", u"a2.rtf", u"Z.rtf", u"А.Rtf", u"б.rtf"}));
    EXPECT_TRUE(ListFiles(folder / u"none", u".rtf").empty());
}

TEST(Files, AreWrittenWhole) {
    const TempFolder folder;
    const Text path = folder / u"отчёт.doc";
    WriteFileWhole(path, "one");
    WriteFileWhole(path, "two");
    EXPECT_EQ(ReadFile(path), "two");
    for (const std::size_t most : {0, 1, 3, 9})
        EXPECT_EQ(ReadFileHead(path, most), std::string("two").substr(0, most));
    {
        NewFile journal(path, folder / u"отчёт-journal");
        for (const char* piece : {"thr", "ee"}) journal.Write(piece);
        journal.Finish();
    }
    EXPECT_EQ(ReadFile(folder / u"отчёт-journal"), "three");
    EXPECT_NE(ErrorOf([&] { NewFile(path, folder / u"отчёт-journal"); }), RunTimeError::Other);
    { NewFile unfinished(path, folder / u"x"); }
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 2u);  // nothing else is left
}

TEST(Files, HeldByAnotherAreNotReplaced) {
    const TempFolder folder;
    const Text path = folder.Write(u"x", "old");
    for (const auto access : {LockedFile::Access::Read, LockedFile::Access::Write}) {
        const LockedFile holder(path, access);
        EXPECT_TRUE(IsHeld(path));
        EXPECT_EQ(ErrorOf([&] { WriteFileWhole(path, "new"); }), RunTimeError::PermissionDenied);
        EXPECT_EQ(ErrorOf([&] { LockedFile(path, LockedFile::Access::Write); }),
                  RunTimeError::PermissionDenied);
    }
    EXPECT_FALSE(IsHeld(path));
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(ListFiles(folder.path(), u"").size(), 1u);
}

TEST(Files, MoveReplaces) {
    const TempFolder folder;
    const Text source = folder.Write(u"a", "1");
    folder.Write(u"b", "old");
    MoveFileOver(source, folder / u"b");
    EXPECT_EQ(ReadFile(folder / u"b"), "1");
    EXPECT_FALSE(FileExists(source));
}

TEST(Folders, TheSameByWhateverPath) {
    const TempFolder folder;
    MakeFolders(folder / u"a/b/x");
    EXPECT_TRUE(SameFolder(folder / u"a/b/..", folder / u"a/"));
    EXPECT_FALSE(SameFolder(folder / u"a", folder / u"a/b"));
    EXPECT_FALSE(SameFolder(folder / u"none", folder / u"none"));
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
