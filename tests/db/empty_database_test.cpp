#include "db/empty_database.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "jet/check/checker.h"
#include "platform/files.h"
#include "support/support.h"

namespace tav {
namespace {

TEST(CreateDatabase, MakesASoundFile) {
    const test::TempFolder folder;
    CreateDatabase(folder / u"new.mdb");
    EXPECT_TRUE(jet::CheckDatabase(folder / u"new.mdb").empty());
}

TEST(CreateDatabase, LeavesExistingFilesAndTheirJournalsAlone) {
    const test::TempFolder folder;
    for (const Text& path : {folder.Write(u"mine.mdb", "mine"), folder.Write(u"gone.mdb-journal", "mine")}) {
        try {
            CreateDatabase(path.substr(0, path.find(u"-journal")));
            ADD_FAILURE() << "overwritten";
        } catch (const Failure& failure) {
            EXPECT_NE(failure.description().find(path), Text::npos);
        }
        EXPECT_EQ(ReadFile(path), "mine");
    }
    EXPECT_FALSE(FileExists(folder / u"gone.mdb"));
}

TEST(CreateDatabase, CreatesNoFolders) {
    const test::TempFolder folder;
    EXPECT_THROW(CreateDatabase(folder / u"missing/new.mdb"), Failure);
    EXPECT_FALSE(FolderExists(folder / u"missing"));
}

}  // namespace
}  // namespace tav
