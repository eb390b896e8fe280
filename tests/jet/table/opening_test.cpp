// What is refused at the door, and with which words; the checker has the same ones.
#include <gmock/gmock.h>

#include "jet/check/checker.h"
#include "jet/file/header_mask.h"
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
    const std::string good = ReadFile(NewDatabase(folder));
    const auto masked = [](std::size_t at) { return static_cast<char>(kHeaderMask[at - kMaskedBegin]); };
    const auto infinite = [&](std::size_t at, int plain) { return static_cast<char>(masked(at) ^ plain); };
    struct Case {
        const char* what;
        std::size_t offset;
        std::string bytes;
        std::string words;
    };
    const Case cases[] = {
        {"text", 0, "hello", "Unrecognized database format '"},
        {"older", 0x14, std::string(1, '\0'), "older version (Jet 3)"},
        {"newer", 0x14, std::string(1, '\2'), "newer version (ACCDB)"},
        {"other engine", 4, "Standard ACE DB", "newer version (ACCDB)"},
        {"encrypted", 0x3E, std::string(1, static_cast<char>(masked(0x3E) ^ 5)), "is encrypted"},
        {"password", 0x42, std::string(1, static_cast<char>(good[0x42] ^ 'x')), "Not a valid password."},
        {"no date", 0x78, {infinite(0x78, 0xF0), infinite(0x79, 0x7F)}, "creation date is damaged"},
        {"cut", good.size(), "x", "its size is wrong"},
    };
    for (const Case& item : cases) {
        std::string bytes = good;
        bytes.resize(std::max(bytes.size(), item.offset + item.bytes.size()));
        bytes.replace(item.offset, item.bytes.size(), item.bytes);
        const Text path = folder.Write(u"База.mdb", bytes);
        EXPECT_THAT(OpenFailure(path), AllOf(HasSubstr(item.words), HasSubstr("База.mdb"))) << item.what;
    }
    for (const std::size_t size : {0, 100, 4096, 8192}) {
        const Text path = folder.Write(u"short.mdb", good.substr(0, size));
        EXPECT_THAT(OpenFailure(path), HasSubstr("Unrecognized database format")) << size;
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
    const Text users = folder.Write(u"new.ldb", "users");
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
