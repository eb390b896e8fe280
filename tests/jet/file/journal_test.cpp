// Units that are interrupted: by a kill at any moment, by damage to the journal itself.
#include <gmock/gmock.h>

#include <filesystem>

#include "jet/file/journal_fixture.h"
#include "platform/locked_file.h"

namespace tav::jet {
namespace {

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

TEST_F(Journal, TornJournalIsIgnoredAndDeleted) {
    const std::string journal = Interrupt(0);
    std::vector<std::string> useless = {"",
                                        journal.substr(0, 20),
                                        journal.substr(0, journal.size() - 1),
                                        journal + "x",
                                        journal.substr(0, journal.size() / 2),
                                        std::string(512, '\0') + journal.substr(512)};
    for (const std::size_t at : {17u, 21u, 25u, 33u, 1000u}) {
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

TEST_F(Journal, SomebodyElsesFileOfItsNameIsReportedAndLeft) {
    const std::string journal = Interrupt(0);
    const std::string zeros(16, '\0');
    for (const std::string& foreign :
         {std::string("notes"), "T" + journal, zeros + "notes", zeros + journal}) {
        WriteFileWhole(path_, after_);
        WriteFileWhole(JournalOf(path_), foreign);
        for (const auto access : {Database::Access::Read, Database::Access::Write}) {
            EXPECT_THAT(FailureOf([&] { Database(path_, access); }),
                        testing::AllOf(testing::HasSubstr("'" + ToUtf8(JournalOf(path_)) + "'"),
                                       testing::HasSubstr("not a journal of this program")));
        }
        EXPECT_EQ(ReadFile(path_), after_);
        EXPECT_EQ(ReadFile(JournalOf(path_)), foreign);
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
    std::filesystem::create_hard_link(test::NativePath(JournalOf(path_)), test::NativePath(kept));
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

}  // namespace
}  // namespace tav::jet
