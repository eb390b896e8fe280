#include <filesystem>

#include "common/progress.h"
#include "db/database_fixture.h"
#include "load/account_of_folder.h"

namespace tav {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Loader = test::OperationsDatabase;
using test::ActPart;
using test::Elements;
using test::Head;
using test::StatementPart;

constexpr TextView kHeaders = u"select id, filename, perb, pere, vid from tav_operations_header order by id";
constexpr TextView kRows = u"select id, p1, p3, p9, p10, p13 from tav_operations order by id";

const Text kPaid = StatementPart({}, {u"p01=01.02.2011|p03=Уплата|p09=налог|p10=5.00"});

TEST_F(Loader, StoresStatementsWithTheirRows) {
    const ImportAccount result = Load(
        {{u"a.rtf", StatementPart({}, {u"p03=Сальдо на 01.01.2011|p09=налог|p10=0.00|p13=0.00",
                                       u"p01=01.02.2011|p02=03.02.2011|p03=Уплата|p04=Плат|p04=поручение|"
                                       u"p09=налог|p10=1\u00A0234.50|p13=-10.25",
                                       u"p01=02.02.2011|p03=Пусто|p09=пеня|p10=0.00|p13=0.00"})}});
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_EQ(result.documents, 1);
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(result.CountNow(), 1);
    EXPECT_THAT(Rows(u"select id, filename, h1, h2, h3, h6, h7, h10, h11, h12, h13, perb, pere, vid from "
                     u"tav_operations_header"),
                ElementsAre("1|a.rtf|7701234567|770101001|ООО Ромашка|НДС|18210101011011000110|45286552000|"
                            "рубль Российской|31.03.2011|01.01.2011|01.01.2011|31.03.2011|1"));
    EXPECT_THAT(Rows(u"select id, p1, p2, p3, p4, p9, p10, p13, p14, tid from tav_operations"),
                ElementsAre("1|01.02.2011|03.02.2011|Уплата|Плат поручение|налог|1234,5|-10,25|-|-",
                            "1|02.02.2011|-|Пусто|-|пеня|0|0|-|-"))
        << "the line before the first amount is not stored, the lines behind it are";
}

TEST_F(Loader, StoresActsWithoutAVersion) {
    Load({{u"act.rtf", ActPart({}, u"p0011=0.00|p0112=7.50|p1111=3.00")}});
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(Rows(u"select id, h4, h6, h12, perb, pere, vid from tav_operations_header"),
                ElementsAre("1|7701|-|05.04.2011|01.01.2011|31.03.2011|-"));
    EXPECT_THAT(Rows(u"select id, p11, p112, p1111, p45 from tav_acts"), ElementsAre("1|0|7,5|3|-"));
}

TEST_F(Loader, PassesOverFilesThatAreThereAlready) {
    Load({{u"Выписка.RTF", kPaid}});
    const ImportAccount again = Load({{u"выписка.rtf", ActPart({}, u"p0011=5.00")}});
    EXPECT_EQ(again.documents, 0);
    EXPECT_EQ(again.Count(Finding::Loaded), 1);
    EXPECT_THAT(Rows(kHeaders), ElementsAre("1|Выписка.RTF|01.01.2011|31.03.2011|1"));
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Loader, ReadsOnlyTheHeadWhenNothingIsNew) {
    Load({{u"a.rtf", kPaid}});
    Write({{u"a.rtf", u"<part>broken"}});
    EXPECT_EQ(Load().Count(Finding::Loaded), 1);
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Loader, NamesTheDocumentWhoseEntryIsBroken) {
    Load({{u"a & c.rtf", kPaid}, {u"b.rtf", u"<part><head>"}});
    EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("Ошибка в функции LoadFromXml: "), HasSubstr("b.rtf"))));
    EXPECT_THAT(Rows(kHeaders), ElementsAre("1|a & c.rtf|01.01.2011|31.03.2011|1"));
}

TEST_F(Loader, SaysWhenThereIsNoCatalogueOrDatabase) {
    Load();
    Write({{u"a.rtf", kPaid}});
    LoadFromXml(catalogue_, folder_ / u"none.mdb", u"7701234567", u"770101001", u"");
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("listfiles.xml"), HasSubstr("none.mdb")));
}

struct TaxpayerCase {
    TextView inn, kpp;
    std::vector<int> loaded;  // indexes into the files
};

TEST_F(Loader, LoadsTheTaxpayersPartsOnly) {
    const std::vector<std::pair<Text, Text>> files = {
        {u"0", StatementPart({.inn = u"77"}, {u"p10=1.00"})},
        {u"1", StatementPart({.inn = u"77", .kpp = u"2"}, {u"p10=1.00"})},
        {u"2", ActPart({.inn = u"78a", .kpp = u"3"}, u"p0011=1.00")},
        {u"3", u"<part type=\"акт\"><head><h02>770101001</h02></head><body/></part>"},
        {u"4", u"<part type=\"акт\"><head><h01>77</h01></head><body/></part>"},
        {u"5", u"<part type=\"прочее\"><head><h01>77</h01><h02>2</h02></head></part>"},
        {u"6", StatementPart({.inn = u"1"}, {u"p10=1.00"}) + ActPart({.inn = u"79"}, u"p0011=1.00")},
    };
    Write(files);
    for (const TaxpayerCase& c :
         {TaxpayerCase{u"77", u"770101001", {0}}, TaxpayerCase{u"77", u"2", {1}},
          TaxpayerCase{u"77", u"0000000000000000", {0, 1}}, TaxpayerCase{u"77", u"000000000000000", {}},
          TaxpayerCase{u"77|78A", u"nobody", {0, 1, 2}}, TaxpayerCase{u"|78A|79|", u"", {2, 6}},
          TaxpayerCase{u"7", u"2", {}}, TaxpayerCase{u"", u"770101001", {}}, TaxpayerCase{u"|", u"", {}}}) {
        clearbaseAll(database_);
        Load(c.inn, c.kpp);
        std::vector<std::string> expected;
        for (const int file : c.loaded) expected.push_back(std::to_string(file));
        EXPECT_EQ(Rows(u"select filename from tav_operations_header order by id"), expected)
            << ToUtf8(c.inn) << " " << ToUtf8(c.kpp);
    }
    EXPECT_THAT(Shown(), IsEmpty());
}

struct SwitchCase {
    TextView setting;
    Text part;
    bool stored;
    int rows;
};

TEST_F(Loader, ObeysTheSwitches) {
    const Text zero = StatementPart({}, {u"p01=01.02.2011|p10=0.00|p11=0.00", u"p01=01.02.2011|p14=0.00"});
    const Text undated = StatementPart({}, {u"p10=7.00", u"p01=01.02.2011|p10=0.00"});
    const Text opened = StatementPart({}, {u"p13=7.00", u"p13=0.00", u"p01=01.02.2011|p10=2.00"});
    const Text late_date = StatementPart({}, {u"p10=7.00|p01=01.02.2011"});
    const Text zero_act = ActPart({}, u"p0011=0.00|p0211=0.00");
    const Text opening_act = ActPart({}, u"p0112=1.00|p0121=2.00|p1121=2.00|p0211=0.00");
    const Text moved_act = ActPart({}, u"p0211=1.00");
    for (const SwitchCase& c :
         {SwitchCase{u"", zero, false, 0}, SwitchCase{u"SpVupis", zero, true, 2},
          SwitchCase{u"SpAct", zero, false, 0}, SwitchCase{u"", undated, true, 2},
          SwitchCase{u"SpVupisOb", undated, false, 0}, SwitchCase{u"SpVupisOb", opened, true, 2},
          SwitchCase{u"SpVupisOb", late_date, false, 0}, SwitchCase{u"", late_date, true, 1},
          SwitchCase{u"", zero_act, false, 0}, SwitchCase{u"SpVupis", zero_act, false, 0},
          SwitchCase{u"SpAct", zero_act, true, 1}, SwitchCase{u"", opening_act, true, 1},
          SwitchCase{u"SpActOb", opening_act, false, 0}, SwitchCase{u"SpActOb", moved_act, true, 1}}) {
        clearbaseAll(database_);
        for (const TextView name : {u"SpVupis", u"SpAct", u"SpVupisOb", u"SpActOb"}) {
            WriteSetting(name, name == c.setting ? u"1" : u"0");
        }
        const ImportAccount result = Load({{u"x.rtf", c.part}, {u"y.rtf", kPaid}});
        EXPECT_EQ(result.Count(Finding::AllZero), c.stored ? 0 : 1);
        const std::vector<std::string> expected =
            c.stored ? std::vector<std::string>{"1", "2"} : std::vector<std::string>{"2"};
        EXPECT_EQ(Rows(u"select id from tav_operations_header order by id"), expected)
            << "a document that is not stored takes its number all the same";
        EXPECT_EQ(Rows(u"select id from tav_operations where id=1").size() +
                      Rows(u"select id from tav_acts where id=1").size(),
                  static_cast<std::size_t>(c.rows))
            << ToUtf8(c.setting) << ": " << ToUtf8(c.part);
    }
    EXPECT_THAT(Shown(), IsEmpty());
}

struct Version {
    Head head;
    std::string row;  // "perb|pere|vid" of all of them, after all are loaded
};

TEST_F(Loader, KeepsOneCurrentVersionOfASeries) {
    const std::vector<std::vector<Version>> runs = {
        // A later end takes the series number over.
        {{{.end = u"31.03.2011"}, "01.01.2011|31.03.2011|-"},
         {{.end = u"30.06.2011"}, "01.01.2011|30.06.2011|1"}},
        // An end that is no later is stored as superseded, unless it lies in the range remembered last: in
        // this
        // run that is the previous run's 31.03.2011 to 30.06.2011.
        {{{.end = u"31.12.2011"}, "01.01.2011|31.12.2011|1"},
         {{.end = u"30.09.2011"}, "01.01.2011|30.09.2011|-"}},
        // The remembered range is now 31.12.2011 to 30.09.2011: nothing lies in it.
        {{{.end = u"30.06.2011"}, "01.01.2011|30.06.2011|1"},
         {{.end = u"30.06.2011"}, "01.01.2011|30.06.2011|-"}},
        // 30.06.2011 to 30.06.2011 is remembered, so the old end lies in it, and the older statement wins.
        {{{.end = u"30.06.2011"}, "01.01.2011|30.06.2011|-"},
         {{.end = u"31.03.2011"}, "01.01.2011|31.03.2011|1"}},
        // Another code, another series; another year too. A statement over a year's end is cut there.
        {{{.code = u"A"}, "01.01.2011|31.03.2011|1"},
         {{.code = u"B"}, "01.01.2011|31.03.2011|2"},
         {{.end = u"31.03.2012", .begin = u"01.01.2012", .code = u"A"}, "01.01.2012|31.03.2012|3"},
         {{.end = u"31.03.2011", .begin = u"01.10.2010", .code = u"A"}, "01.10.2010|31.12.2010|4"}},
        // A period that does not begin with its year never becomes anybody's predecessor.
        {{{.begin = u"01.02.2011"}, "01.02.2011|31.03.2011|1"},
         {{.begin = u"01.02.2011"}, "01.02.2011|31.03.2011|2"}},
    };
    for (const std::vector<Version>& run : runs) {
        clearbaseAll(database_);
        std::vector<std::pair<Text, Text>> files;
        std::vector<std::string> expected;
        for (const Version& version : run) {
            files.emplace_back(Digits(static_cast<long long>(files.size())),
                               StatementPart(version.head, {u"p10=1.00"}));
            expected.push_back(version.row);
        }
        Load(files);
        EXPECT_EQ(Rows(u"select perb, pere, vid from tav_operations_header order by id"), expected);
    }
    EXPECT_THAT(Shown(), IsEmpty());
}

// The fourth statement would have superseded the first one.
TEST_F(Loader, UndoesAFaultyDocumentAndNoOther) {
    const Text broken = StatementPart({.end = u"30.06.2011"}, {u"p10=1.00"}) +
                        StatementPart({.end = u"30.09.2011"}, {u"p10=1.00", u"p01=вчера|p10=2.00"});
    const std::vector<std::pair<Text, Text>> files = {
        {u"a.rtf", kPaid},
        {u"b.rtf", StatementPart({.code = u"Д'Артаньян"}, {u"p03=Д'Артаньян|p10=2.00"})},
        {u"c.rtf", StatementPart({}, {u"p10="})},
        {u"d.rtf", broken},
        {u"e.rtf", StatementPart({.begin = u"#;--"}, {u"p10=1.00"})},
        {u"f.rtf", StatementPart({}, {u"p77=1|p10=1.00"})},
        {u"g.rtf", ActPart({}, u"p0011=1.00")}};
    for (int run = 0; run < 2; ++run) {
        shown_.messages.clear();
        const ImportAccount account = Load(files);
        EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("LoadFromXml: c.rtf: "), HasSubstr("d.rtf: "),
                                               HasSubstr("e.rtf: "), HasSubstr("f.rtf: "))));
        EXPECT_EQ(account.Count(Finding::Failed), 4);
        EXPECT_EQ(account.CountNow(), run == 0 ? 3 : 0);
        EXPECT_THAT(Rows(u"select id, filename, vid from tav_operations_header order by id"),
                    ElementsAre("1|a.rtf|1", "2|b.rtf|2", "3|g.rtf|-"));
        EXPECT_THAT(Rows(u"select id, p3 from tav_operations order by id"),
                    ElementsAre("1|Уплата", "2|Д'Артаньян"));
    }
}

TEST_F(Loader, TellsOfAFolderWithoutChangingIt) {
    for (const TextView name : {u"a.rtf", u"b.rtf", u"c.rtf", u"e.rtf"}) {
        folder_.Write(Text(u"in/").append(name), "{\\rtf1 nothing}");
    }
    Write({{u"a.rtf", kPaid},
           {u"b.rtf", StatementPart({.inn = u"78"}, {u"p10=1.00"})},
           {u"c.rtf", StatementPart({.code = u"1"}, {u"p10=0.00"})}});
    const std::string before = ReadFile(database_);
    const auto words = [&](TextView inn) {
        Text all;
        const ImportAccount account = AccountOfFolder(folder_ / u"in", database_, inn, u" 770101001 ");
        for (const FileAccount& file : account.files) all += file.Words() + u"\n";
        return ToUtf8(all + ClosingSentence(account));
    };
    EXPECT_THAT(words(u" 7701234567 "),
                AllOf(testing::StartsWith("ещё не загружен\nдругой налогоплательщик: ИНН 78, КПП 770101001\n"
                                          "все суммы нулевые\nне распознан: "),
                      testing::EndsWith("К загрузке документов: 1.")));
    EXPECT_THAT(words(u"1"), testing::EndsWith("с ИНН 1, есть с ИНН 7701234567, 78."));
    EXPECT_EQ(ReadFile(database_), before);
    Load();
    EXPECT_THAT(words(u"7701234567"), testing::StartsWith("загружен\nдругой налогоплательщик: ИНН 78"));
}

TEST_F(Loader, CutsLongTextsAndNamesThem) {
    const Text name(300, u'н');
    const ImportAccount account =
        Load({{u"a.rtf", StatementPart({.code = name}, {u"p03=" + name + u"|p10=1.00"})}});
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_EQ(account.files.at(0).Words(), u"загружен; тексты сокращены: h7 (знаков: 300), p3 (знаков: 300)");
    EXPECT_EQ(Rows(u"select h7 from tav_operations_header").at(0).size(), 2 * 255);
}

// The opening balance is missing from the fourth line's sums, as if a line had been swallowed.
TEST_F(Loader, NamesTheFirstLineThatDoesNotFollow) {
    std::vector<Text> rows = {u"p03=Сальдо на|p09=налог|p13=-5.00|p14=-5.00"};
    for (int i = 1; i <= 12; ++i) {
        const Text balance = Digits(i < 4 ? i - 5 : i);
        rows.push_back(u"p01=01.02.2011|p09=налог|p10=0.00|p11=1.00|p13=" + balance + u".00|p14=" + balance +
                       u".00");
    }
    Text part = StatementPart({}, {});
    Text lines;
    for (const Text& row : rows) lines += u"<row>" + Elements(row) + u"</row>";
    part.insert(part.find(u"</body>"), lines);
    EXPECT_EQ(Load({{u"a.rtf", part}}).files.at(0).Words(),
              u"загружен; остатки не сходятся: первая такая строка: 5");
}

TEST_F(Loader, OverflowsPast32767) {
    Execute(u"insert into tav_operations_header (id,filename,h1) values (32766,'old','1')");
    Load({{u"a.rtf", kPaid}, {u"b.rtf", kPaid}});
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("Overflow")));
    EXPECT_THAT(Rows(u"select id, filename from tav_operations_header order by id"),
                ElementsAre("32766|old", "32767|a.rtf"));
}

TEST_F(Loader, StopsBeforeAFileWhenTheDatabaseIsFull) {
    fs::resize_file(test::NativePath(database_), std::uintmax_t{524200} * 4096);  // nearly 2 GB, of holes
    Load({{u"a.rtf", kPaid}});
    EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("не осталось места"), HasSubstr("a.rtf"))));
    EXPECT_THAT(Rows(kHeaders), IsEmpty());
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
    LoadAndMove(folder_ / u"done");
    EXPECT_THAT(Shown(), ElementsAre("Запрет: Файл a.rtf используется и не может быть перемещён"));
    EXPECT_THAT(Rows(u"select filename from tav_operations_header"), ElementsAre("a.rtf"));
    EXPECT_TRUE(FileExists(folder_ / u"in/a.rtf"));
}

}  // namespace
}  // namespace tav
