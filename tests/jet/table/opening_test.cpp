// What is refused at the door, and with which words; the checker has the same ones.
#include <gmock/gmock.h>

#include "jet/bad_databases.h"
#include "jet/check/checker.h"
#include "jet/jet_fixtures.h"
#include "jet/table/database.h"
#include "platform/files.h"
#include "platform/locked_file.h"

namespace tav::jet {
namespace {

using test::FailureOf;
using test::NewDatabase;
using test::TempFolder;
using testing::AllOf;
using testing::HasSubstr;

std::string OpenFailure(const Text& path, Database::Access access = Database::Access::Read) {
    const std::string words = FailureOf([&] { Database(path, access); });
    if (words.empty() || access == Database::Access::Write) return words;
    std::vector<Finding> findings;
    const std::string refusal =
        FailureOf([&] { findings = CheckDatabase(path); });  // the file cannot be read
    if (!refusal.empty()) findings = {{true, 1, FromUtf8(refusal)}};
    EXPECT_EQ(findings.size(), 1U);
    EXPECT_TRUE(findings.front().error);
    EXPECT_EQ(findings.front().invariant, 1);
    EXPECT_EQ(ToUtf8(findings.front().text), words);
    return words;
}

TEST(Opening, ForeignFilesAreRefusedByName) {
    TempFolder folder;
    for (const test::BadDatabase& bad : test::BadDatabases(ReadFile(NewDatabase(folder)))) {
        const Text path = folder.Write(u"База.mdb", bad.bytes);
        EXPECT_THAT(OpenFailure(path), AllOf(HasSubstr(bad.words), HasSubstr("База.mdb"))) << bad.what;
    }
}

TEST(Opening, MissingFileOrFolder) {
    TempFolder folder;
    EXPECT_EQ(OpenFailure(folder / u"none.mdb"),
              "Could not find file '" + ToUtf8(folder / u"none.mdb") + "'.");
    for (const Text& path : {folder / u"no/none.mdb", Text()}) {
        EXPECT_THAT(OpenFailure(path), HasSubstr("Could not find file"));
    }
    EXPECT_NE(OpenFailure(folder.path()), "");
}

TEST(Opening, LockedFileIsInUse) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    const std::string in_use = "Could not use '" + ToUtf8(path) + "'; file already in use.";
    {
        const Database writer(path, Database::Access::Write);
        EXPECT_EQ(OpenFailure(path, Database::Access::Read), in_use);
        EXPECT_EQ(OpenFailure(path, Database::Access::Write), in_use);
    }
    {
        const Database reader(path, Database::Access::Read);
        EXPECT_EQ(OpenFailure(path, Database::Access::Read), "");
        EXPECT_EQ(OpenFailure(path, Database::Access::Write), in_use);
    }
    EXPECT_EQ(OpenFailure(path, Database::Access::Write), "");
}

TEST(Opening, ListOfUsersIsStaleWhenNobodyHoldsIt) {
    TempFolder folder;
    const Text path = NewDatabase(folder);
    const Text users = folder.Write(u"NEW.Ldb", "users");
    {
        const LockedFile user(users, LockedFile::Access::Read);
        EXPECT_THAT(OpenFailure(path, Database::Access::Write), HasSubstr("file already in use"));
    }
    EXPECT_EQ(OpenFailure(path, Database::Access::Read), "");
    EXPECT_TRUE(FileExists(users));
    EXPECT_EQ(OpenFailure(path, Database::Access::Write), "");
    EXPECT_FALSE(FileExists(users));
}

TEST(Opening, ReaderChangesNothing) {
    TempFolder folder;
    Database database(NewDatabase(folder), Database::Access::Read);
    Table& table = *database.FindTable(u"THINGS");
    EXPECT_THAT(FailureOf([&] { table.Insert(test::Thing(1, u"x")); }),
                HasSubstr("Cannot update. Database or object is read-only"));
    EXPECT_FALSE(database.file().HasChanges());
}

}  // namespace
}  // namespace tav::jet
