// What a load meets that is not in its catalogue: clicks, full disks, folders to move files to. The stories
// have the rest.
#include <filesystem>

#include "common/progress.h"
#include "db/database_fixture.h"

namespace tav {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Loader = test::OperationsDatabase;
using test::ActPart;
using test::StatementPart;

const Text kPaid = StatementPart({}, {u"p01=01.02.2011|p03=Уплата|p09=налог|p10=5.00"});

TEST_F(Loader, SaysWhenThereIsNoCatalogueOrDatabase) {
    Load();
    Write({{u"a.rtf", kPaid}});
    LoadFromXml(catalogue_, folder_ / u"none.mdb", u"7701234567", u"770101001", u"");
    clearbaseAll(folder_ / u"none.mdb");
    EXPECT_THAT(Shown(),
                ElementsAre(HasSubstr("listfiles.xml"), HasSubstr("none.mdb"),
                            AllOf(StartsWith("Ошибка в функции clearbase: "), HasSubstr("none.mdb"))));
}

TEST_F(Loader, StopsBeforeAFileWhenTheDatabaseIsFull) {
    fs::resize_file(test::NativePath(database_), std::uintmax_t{524200} * 4096);  // nearly 2 GB, of holes
    Load({{u"a.rtf", kPaid}});
    EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("не осталось места"), HasSubstr("a.rtf"))));
    EXPECT_THAT(Rows(u"select id from tav_operations_header"), IsEmpty());
}

TEST_F(Loader, KnowsASupersededStatementWhoseFileCannotBeReadAtTheMoment) {
    const Text half = StatementPart({.end = u"30.06.2011"}, {u"p10=1.00"});
    Load({{u"a.rtf", kPaid}, {u"b.rtf", half}});
    Write({{u"b.rtf", half}});
    ScanAccount scan;
    scan.files = {{.name = u"A.rtf", .state = ScannedFile::State::Unreadable}, {.name = u"b.rtf"}};
    LoadFromXml(catalogue_, database_, u"7701234567", u"770101001", {}, &scan);
    EXPECT_THAT(Rows(u"select filename, vid from tav_operations_header order by id"),
                ElementsAre("a.rtf|-", "b.rtf|1"));
}

// A person who clicks while files are loaded.
class ClicksClear : public Progress {
 public:
    explicit ClicksClear(TextView database) : database_(database) {}
    void ProcessEvents() override {
        ++times;
        clearbaseAll(database_);
    }

    int times = 0;

 private:
    Text database_;
};

TEST_F(Loader, ProcessesEventsWhileReadingAndBetweenFilesAndLetsNobodyElseIn) {
    ClicksClear progress(database_);
    const ScopedProgress scope(progress);
    Load({{u"a.rtf", kPaid}, {u"act.rtf", ActPart({}, u"p0011=1.00")}});
    EXPECT_EQ(progress.times, 4);
    EXPECT_THAT(Shown(), AllOf(SizeIs(4), Each(HasSubstr("already in use"))));
    EXPECT_THAT(Rows(u"select filename from tav_operations_header order by id"),
                ElementsAre("a.rtf", "act.rtf"));
}

class Moves : public Loader {
 protected:
    Moves() {
        folder_.Write(u"in/a.rtf", "new");
        Write({{u"a.rtf", kPaid}, {u"other.rtf", StatementPart({.inn = u"1"}, {u"p10=1.00"})}});
        folder_.Write(u"in/other.rtf", "other");
    }
    ImportAccount LoadAndMove(TextView folder) const { return Load(u"7701234567", u"770101001", folder); }
};

TEST_F(Moves, LoadedFilesReplaceOlderOnes) {
    MakeFolders(folder_ / u"done/x/");
    folder_.Write(u"done/x/a.rtf", "old");
    EXPECT_EQ(LoadAndMove(folder_ / u"done/x").moved, 1);
    EXPECT_EQ(ReadFile(folder_ / u"done/x/a.rtf"), "new");
    EXPECT_FALSE(FileExists(folder_ / u"in/a.rtf"));
    EXPECT_TRUE(FileExists(folder_ / u"in/other.rtf"));
}

TEST_F(Moves, MakeTheFolderAndDoNotMissASource) {
    DeleteFile(folder_ / u"in/a.rtf");
    const ImportAccount result = LoadAndMove(folder_ / u"deep/er");
    EXPECT_EQ(result.CountNow(), 1);
    EXPECT_EQ(result.moved, 0);
    EXPECT_TRUE(FolderExists(folder_ / u"deep/er"));
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Moves, StayWithinTheirFolders) {
    folder_.Write(u"outside.rtf", "x");
    Write({{u"../outside.rtf", kPaid}});
    EXPECT_EQ(LoadAndMove(folder_ / u"done/").CountNow(), 1);
    EXPECT_TRUE(FileExists(folder_ / u"outside.rtf"));
}

TEST_F(Moves, LeaveTheImportFolderAlone) {
    if (!test::MakeLink(folder_ / u"in", folder_ / u"link")) GTEST_SKIP() << "no links";
    EXPECT_EQ(LoadAndMove(folder_ / u"link/").moved, 0);
    EXPECT_EQ(ReadFile(folder_ / u"in/a.rtf"), "new");
}

TEST_F(Moves, CrossFileSystems) {
    if (!FolderExists(u"/dev/shm/")) GTEST_SKIP() << "no second file system";
    const Text target =
        u"/dev/shm/tav-test-" + NameOf(folder_.path().substr(0, folder_.path().size() - 1)) + u"/";
    EXPECT_EQ(LoadAndMove(target).moved, 1);
    EXPECT_EQ(ReadFile(target + u"a.rtf"), "new");
    EXPECT_FALSE(FileExists(folder_ / u"in/a.rtf"));
    fs::remove_all(test::NativePath(target));
}

TEST_F(Moves, SayWhatCannotBeMovedAndKeepWhatIsLoaded) {
    // A folder of the file's name is in the way, whoever runs this.
    MakeFolders(folder_ / u"done/a.rtf/x");
    folder_.Write(u"done/a.rtf/x", "");
    EXPECT_FALSE(LoadAndMove(folder_ / u"done").database_failed);
    EXPECT_THAT(Shown(), ElementsAre("Запрет: Файл a.rtf используется и не может быть перемещён"));
    EXPECT_THAT(Rows(u"select filename from tav_operations_header"), ElementsAre("a.rtf"));
    EXPECT_TRUE(FileExists(folder_ / u"in/a.rtf"));

    class Waits : public MessageBox {
     public:
        explicit Waits(TextView database) : database_(database) {}
        void Show(const Message&) override { held.push_back(IsHeld(database_)); }

        std::vector<bool> held;

     private:
        Text database_;
    } waits(database_);
    const ScopedMessageBox scope(waits);
    Execute(u"delete from tav_operations_header");
    LoadAndMove(folder_ / u"done");
    EXPECT_THAT(waits.held, ElementsAre(false));
}

}  // namespace
}  // namespace tav
