#include "db/connection.h"
#include "platform/locked_file.h"
#include "samples/generator.h"
#include "ui/desktop.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Windows : public Desktop {
 protected:
    // Enough documents for something to happen while they are read.
    void StartWithMany() {
        WriteStatements(300);
        Start();
        ASSERT_TRUE(WaitCounts("lblInfoFile", "загрузке: 300"));
    }
};

TEST_F(Windows, ImportsFromTheMainWindow) {
    WriteStatements(8);
    WriteAct();
    folder_.Write(u"in/чужой.rtf", "{\\rtf1 nothing}");
    WriteSetting(u"NameINNKPP", u"ООО <b>Ромашка</b>|7701234567|770101001|лишнее");
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Подлежат загрузке: 10"));
    EXPECT_EQ(TextOf(Main("lblInfoName")), "ООО <b>Ромашка</b>");
    EXPECT_EQ(TextOf(Main("Label5")), "ИНН: 7701234567     КПП: 770101001");
    EXPECT_FALSE(IsEnabled(Main("Command3")));
    const auto listed = RowsOf(Main("lstFile"));
    ASSERT_THAT(listed, SizeIs(10));
    EXPECT_EQ(listed[0],
              "18210101011011000110   45280000000   01.01.2009 - 28.03.2009   v0000.rtf   ещё не загружен");
    EXPECT_THAT(listed, Contains("чужой.rtf   не распознан"));

    Click(Main("Command1"));
    ASSERT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: 6\r\nАктов в базе данных: 1"));
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Подлежат загрузке: 1"));
    const auto held = RowsOf(Main("lstBase"));
    ASSERT_THAT(held, SizeIs(9));
    EXPECT_THAT(held[0], AllOf(StartsWith("18210101011011000110   45280000000   200901 - 200903 "),
                               EndsWith(" Выписка")));
    EXPECT_TRUE(IsEnabled(Main("Command3")));
    EXPECT_TRUE(IsEnabled(Main("Command6")));
    EXPECT_THAT(RowsOf(Main("lstFile")), AllOf(Contains(EndsWith("v0000.rtf   заменена")),
                                               Contains(EndsWith("v0001.rtf   загружен"))));
    EXPECT_THAT(TextOf(Main("txtAbout")),
                AllOf(HasSubstr("Загружено документов: 9."),
                      HasSubstr("Загружено: 7; Заменено другими выписками: 2; Не распознано: 1")));
    EXPECT_THAT(Shown(), IsEmpty());
}

// By the button, and by closing the main window, which stays.
TEST_F(Windows, CancelInTheMiddleOfAnImportLosesNothing) {
    StartWithMany();
    const std::vector<std::function<void()>> ways = {[] {
                                                         Click({"frmShortImport", "CancelButton"});
                                                     },
                                                     [] { CloseWindow("frmmain"); }};
    for (const auto& way : ways) {
        CancelStamp() = 0;
        bool shown = false;
        WhenShown("frmShortImport", [&] {
            shown = true;
            EXPECT_EQ(TextOf({"frmShortImport", "Label2"}), "по налогоплательщику 7701234567");
            way();
        });
        ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command1")); }));
        Click(Main("Command1"));
        EXPECT_TRUE(shown);
        EXPECT_NE(CancelStamp(), 0);
        EXPECT_FALSE(FileExists(folder_ / u"in/listfiles.xml"));
        EXPECT_TRUE(WaitGone("frmShortImport"));
        EXPECT_THAT(TextOf(Main("txtAbout")), HasSubstr("Импорт прерван."));
        WaitFor(1100);  // an import in the second of the cancel is refused
    }
    EXPECT_THAT(ListFiles(folder_ / u"in", u".rtf"), SizeIs(300));
    EXPECT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: 0"));
    EXPECT_TRUE(Wait([] { return IsEnabled(Main("Command1")); }));
}

// Another taxpayer does not stop what it began; meanwhile nobody else gets at the database.
TEST_F(Windows, AnImportSurvivesAnotherTaxpayer) {
    StartWithMany();
    bool asked = false;
    WhenShown("frmShortImport", [&] {
        asked = true;
        host_.import(kInn, kKpp);
        host_.view_v(kInn, kKpp);
        host_.start(u"5500000000", u"550001001");
    });
    Click(Main("Command1"));
    ASSERT_TRUE(asked);
    EXPECT_TRUE(WaitGone("frmShortImport"));
    EXPECT_THAT(Shown(), ElementsAre(AllOf(StartsWith("Ошибка в функции View_V: "),
                                           HasSubstr("file already in use"))));
    Start();
    EXPECT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: 225"));
}

// The lists follow what happens behind the window's back: an import of the host, a database that was busy.
TEST_F(Windows, CatchesUp) {
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 0"));
    WriteStatements(2);
    Import();
    ASSERT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: 1"));
    EXPECT_THAT(RowsOf(Main("lstBase")), SizeIs(2));
    {
        const LockedFile other(folder_ / u"PlX_Base.mdb", LockedFile::Access::Write);
        Click(Main("chkKons"));
        EXPECT_TRUE(Wait([] { return TextOf(Main("txtAbout")).find("занята") != std::string::npos; }));
        EXPECT_THAT(RowsOf(Main("lstBase")), SizeIs(2));
        EXPECT_THAT(TextOf(Main("lblInfoBase")), StartsWith("Выписок в базе данных: 1"));
        EXPECT_FALSE(IsEnabled(Main("Command3")));
    }
    EXPECT_TRUE(Wait([] { return IsEnabled(Main("Command3")); }));
    EXPECT_THAT(TextOf(Main("txtAbout")), Not(HasSubstr("занята")));
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Windows, ClearsAfterAsking) {
    WriteStatements(2);
    Import();
    Start();
    for (const auto& [button, left] : {std::pair{"Command3", 2}, {"Command1", 0}}) {
        ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command2")); }));
        WhenShown("frmDialog", [name = button] { Click({"frmDialog", name}); });
        Click(Main("Command2"));
        EXPECT_FALSE(OnScreen("frmDialog"));
        EXPECT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: " + std::to_string(left / 2)));
        EXPECT_THAT(RowsOf(Main("lstBase")), SizeIs(left));
    }
    EXPECT_TRUE(Wait([] { return !IsEnabled(Main("Command2")); }));
}

TEST_F(Windows, NarrowsASummaryToAPeriodAndACode) {
    WriteStatements(16);
    Import();
    host_.view_v(kInn, kKpp);
    ASSERT_TRUE(WaitActive("frmFilter"));
    EXPECT_THAT(NodesOf({"frmFilter", "TreeView1"}), Contains(StartsWith(" 20")).Times(2));
    EXPECT_THAT(RowsOf({"frmFilter", "cmbKBK"}), SizeIs(3));
    ChooseNode({"frmFilter", "TreeView1"}, u"2 полугодие");
    Focus({"frmFilter", "cmbKBK"});
    Press(Key::Down);
    Press(Key::Down);  // the period stays
    Click({"frmFilter", "Command1"});
    const std::string opened = Opened("index");
    EXPECT_THAT(opened, HasSubstr(ToUtf8(folder_ / u"reports/index")));
    const std::string page = ReadFile(FromUtf8(opened.substr(0, opened.find('\n'))));
    const auto times = [&](TextView text) {
        const std::string bytes = Bytes(text);
        int count = 0;
        for (std::size_t at = 0; (at = page.find(bytes, at)) != std::string::npos; ++at) ++count;
        return count;
    };
    EXPECT_EQ(times(u"<a href="), 2);
    EXPECT_EQ(times(samples::Taxes()[1].kbk), 2);
    EXPECT_EQ(times(u"01.07.2009-"), 1);
    Click({"frmFilter", "Check1"});
    EXPECT_TRUE(SettingTruth(u"ChkFilter"));
    Press(Key::Escape);
    EXPECT_FALSE(OnScreen("frmFilter"));
}

// The box, the tree and the report are of the same code, whatever becomes of the database meanwhile.
TEST_F(Windows, KeepsToTheCodeWhosePeriodsItShows) {
    WriteStatements(5);
    Import();
    host_.view_v(kInn, kAllSubdivisions);
    ASSERT_TRUE(WaitActive("frmFilter"));
    const Spot codes = {"frmFilter", "cmbKBK"};
    const auto shown = [&] {
        const auto nodes = NodesOf({"frmFilter", "TreeView1"});
        return TextOf(codes) + (nodes.size() > 1 ? nodes[1] : "");
    };
    const std::string first = ToUtf8(samples::Taxes()[0].kbk) + " 2009 (3/3)";
    const std::string second = ToUtf8(samples::Taxes()[1].kbk) + " 2009 (1/1)";
    Focus(codes);
    EXPECT_EQ(shown(), first);
    const auto hide = [&](TextView from, TextView to) {
        std::filesystem::rename(NativePath(folder_ / from), NativePath(folder_ / to));
    };
    hide(u"PlX_Base.mdb", u"hidden");
    Press(Key::Down);
    EXPECT_THAT(Shown(), SizeIs(1));
    EXPECT_EQ(shown(), first);
    hide(u"hidden", u"PlX_Base.mdb");
    Press(Key::Down);
    EXPECT_EQ(shown(), second);
    {
        Connection connection;
        connection.Open(ConnectionString(folder_ / u"PlX_Base.mdb"));
        connection.Execute(Text(u"delete from tav_operations_header where h7='")
                               .append(samples::Taxes()[0].kbk)
                               .append(u"'"));
    }
    Press(Key::Up);
    EXPECT_THAT(RowsOf(codes), SizeIs(1));
    EXPECT_EQ(shown(), "");
    Click({"frmFilter", "Command1"});
    EXPECT_THAT(Shown(), ElementsAre(StartsWith("Ошибка в функции GetFiles"), StartsWith("Сводная справка")));
    Focus(codes);
    Press(Key::Down);
    EXPECT_EQ(shown(), second);
}

TEST_F(Windows, SaysWhenThereIsNothing) {
    host_.view_a(kInn, kKpp);
    EXPECT_FALSE(OnScreen("frmFilter"));
    EXPECT_THAT(Shown(),
                ElementsAre("Сводная справка: В базе данных для выбранного налогоплательщика отсутствует "
                            "информация по импортированным актам сверки.\r\nСводная справка не может "
                            "быть сформирована."));
}

TEST_F(Windows, KeepsTheSettings) {
    WriteSetting(u"ChkOut", u"0");
    Start();
    EXPECT_FALSE(IsEnabled(Main("txtOut")));
    Click(Main("chkImportPath"));
    EXPECT_TRUE(IsEnabled(Main("txtOut")));
    Type(Main("txtOut"), u"/куда");
    Type(Main("txtExport"), u"C:\\отчёты");
    Click(Main("Command5"));
    EXPECT_FALSE(OnScreen("frmmain"));
    EXPECT_EQ(SettingText(u"ExportPath"), u"C:\\отчёты");
    EXPECT_EQ(SettingText(u"OutPath"), u"/куда");
    EXPECT_TRUE(SettingTruth(u"ChkOut"));
    EXPECT_EQ(SettingText(u"ImportPath"), folder_ / u"in");
}

TEST_F(Windows, ASettingOfAnotherKindStaysAsItIsAndTheOthersAreKept) {
    const RegistryValue odd = Binary{"x"};
    for (const TextView name : {u"OutPath", u"ChkOut"}) {
        const Setting& setting = *FindSetting(name);
        WriteRegistry(setting.hive, setting.key, name, odd, RegistryType::Binary);
    }
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 0"));
    Type(Main("txtExport"), u"C:\\отчёты");
    Click(Main("Command5"));
    EXPECT_THAT(Shown(), ElementsAre("Ошибка в функции Form_Load: Type mismatch: OutPath\r\n",
                                     "Ошибка в функции Form_Load: Type mismatch: ChkOut\r\n"));
    EXPECT_EQ(SettingText(u"ExportPath"), u"C:\\отчёты");
    for (const TextView name : {u"OutPath", u"ChkOut"}) {
        const Setting& setting = *FindSetting(name);
        RegistryValue left;
        EXPECT_TRUE(ReadRegistry(setting.hive, setting.key, name, left));
        EXPECT_EQ(left, odd) << ToUtf8(name);
    }
}

// A message that a person leaves standing: the windows' timers go on meanwhile.
class StandingBox : public MessageBox {
 public:
    void Show(const Message&) override {
        ++shown;
        WaitFor(300);
    }
    int shown = 0;

 private:
    ScopedMessageBox scope_{*this};
};

TEST_F(Windows, KeepsTheSettingsWhileAMessageStandsBeforeTheWindow) {
    WriteSetting(u"ChkOut", u"1");
    DeleteFile(folder_ / u"PlX_Base.mdb");
    StandingBox box;
    Start();
    EXPECT_EQ(box.shown, 1);
    EXPECT_TRUE(IsTicked(Main("chkImportPath")));
    EXPECT_TRUE(SettingTruth(u"ChkOut"));
}

// A folder that vanishes while its files are read is one failure.
TEST_F(Windows, LivesOnWhenTheFolderVanishes) {
    StartWithMany();
    WhenShown("frmShortImport", [&] { MoveFileOver(folder_ / u"in", folder_ / u"gone"); });
    Click(Main("Command1"));
    EXPECT_TRUE(WaitCounts("lblInfoFile", "папка не найдена"));
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("Path not found")));
}

// Bad surroundings: no dead window, one clear message, not one per keystroke.
TEST_F(Windows, LivesWithoutFolderAndDatabase) {
    WriteSetting(u"ImportPath", folder_ / u"gone");
    DeleteFile(folder_ / u"PlX_Base.mdb");
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 0 (папка не найдена)"));
    Type(Main("txtImport"), u"abc");
    WaitFor(300);
    EXPECT_THAT(Shown(),
                ElementsAre(AllOf(StartsWith("Ошибка в функции SetFiles: "), HasSubstr("PlX_Base.mdb"))));
    for (const char* list : {"lstFile", "lstBase"}) DoubleClickRow(Main(list), -1);
    for (const char* button : {"Command1", "Command2", "Command3", "Command6"}) {
        EXPECT_FALSE(IsEnabled(Main(button))) << button;
    }
    CreateDatabase(folder_ / u"PlX_Base.mdb");
    WriteStatements(1);
    Type(Main("txtImport"), folder_ / u"in");
    EXPECT_TRUE(WaitCounts("lblInfoFile", "Подлежат загрузке: 1"));
    EXPECT_THAT(Shown(), SizeIs(1));
}

TEST_F(Windows, OpensWhatIsDoubleClicked) {
    WriteStatements(1);
    Import();
    folder_.Write(u"in/Налог_18210101011011000110_45280000000_200901-200903.doc", "x");
    folder_.Write(u"reports/Налог_18210101011011000110_45280000000_200901-200903.doc", "x");
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 1"));
    for (const auto& [list, end] :
         {std::pair{"lstFile", u"in/v0000.rtf"},
          {"lstBase", u"reports/Налог_18210101011011000110_45280000000_200901-200903.doc"}}) {
        DoubleClickRow(Main(list), 0);
        EXPECT_THAT(Opened(ToUtf8(folder_ / end)), EndsWith(ToUtf8(folder_ / end) + "\n"));
    }
}

TEST_F(Windows, ShowsAllSubdivisions) {
    WriteStatements(1);
    samples::StatementOptions division;
    division.name = u"division.rtf";
    division.taxpayer = samples::DivisionTaxpayer();
    samples::WriteDocument(folder_ / u"in", samples::MakeStatement(division));
    host_.import(kInn, kAllSubdivisions);
    Start();
    EXPECT_THAT(RowsOf(Main("lstBase")), SizeIs(1));
    Click(Main("chkKons"));
    EXPECT_THAT(RowsOf(Main("lstBase")), SizeIs(2));
    EXPECT_EQ(TextOf(Main("Label5")), "ИНН: 7701234567");
    ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command3")); }));
    Click(Main("Command3"));
    ASSERT_TRUE(WaitShown("frmFilter"));
    EXPECT_THAT(Shown(), IsEmpty());
}

}  // namespace
}  // namespace tav
