#include "common/progress.h"
#include "db/connection.h"
#include "ui/frmShortImport.h"
#include "ui/screen.h"
#include "ui/session.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class Windows : public Desktop {
 protected:
    static constexpr int kWhileTheyAreRead = 3000;  // all cores read

    // Enough documents for something to happen while they are imported.
    void StartWithMany(int documents = 300) {
        WriteStatements(documents);
        Start();
        ASSERT_TRUE(WaitCounts("lblInfoFile", "загрузке: " + std::to_string(documents)));
    }
};

// By the button, and by closing the main window, which stays.
TEST_F(Windows, CancelInTheMiddleOfAnImportLosesNothing) {
    StartWithMany(kWhileTheyAreRead);
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
    EXPECT_THAT(ListFiles(folder_ / u"in", u".rtf"), SizeIs(kWhileTheyAreRead));
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

// Somebody who chooses another code while a report is made.
class Restless : public Progress {
    void ProcessEvents() override {
        Focus({"frmFilter", "cmbKBK"});
        Press(Key::Up);
    }
};

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
    const auto named = [](const samples::Tax& tax) { return ToUtf8(tax.kbk + u"   " + tax.name); };
    const std::string first = named(samples::Taxes()[0]) + " 2009 (3/3)";
    const std::string second = named(samples::Taxes()[1]) + " 2009 (1/1)";
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
    {
        Restless person;
        const ScopedProgress scope(person);
        Click({"frmFilter", "Command1"});
        Focus(codes);
    }
    EXPECT_THAT(Opened("index"), HasSubstr("index"));
    EXPECT_EQ(shown(), second);
    Press(Key::Up);
    EXPECT_THAT(RowsOf(codes), SizeIs(1));
    EXPECT_EQ(shown(), "");
    Click({"frmFilter", "Command1"});
    EXPECT_THAT(Shown(), ElementsAre(StartsWith("Ошибка в функции GetFiles"), StartsWith("Сводная справка")));
    Focus(codes);
    Press(Key::Down);
    EXPECT_EQ(shown(), second);
}

TEST_F(Windows, ASettingOfAnotherKindStaysAsItIsAndTheOthersAreKept) {
    const RegistryValue odd = Binary{"x"};
    for (const TextView name : {u"OutPath", u"ChkOut"}) {
        const Setting& setting = *FindSetting(name);
        WriteRegistry(setting.hive, setting.key, name, odd, RegistryType::Binary);
    }
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 0"));
    Type(Main("txtExport"), folder_ / u"in");
    Click(Main("Command5"));
    EXPECT_THAT(Shown(), ElementsAre("Ошибка в функции Form_Load: Type mismatch: OutPath\r\n",
                                     "Ошибка в функции Form_Load: Type mismatch: ChkOut\r\n"));
    EXPECT_EQ(SettingText(u"ExportPath"), folder_ / u"in");
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
    StartWithMany(kWhileTheyAreRead);
    WhenShown("frmShortImport", [&] { MoveFileOver(folder_ / u"in", folder_ / u"gone"); });
    Click(Main("Command1"));
    EXPECT_TRUE(WaitCounts("lblInfoFile", "папка не найдена"));
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("Path not found")));
}

class Sessions : public Session, public testing::WithParamInterface<const char*> {};

TEST_P(Sessions, GoAsTheyAreWritten) {
    Play(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Desktop, Sessions,
                         testing::Values("session", "import", "catches_up", "summary", "nothing", "settings",
                                         "surroundings", "double_click", "subdivisions", "lost", "folders"),
                         [](const auto& session) { return session.param; });

// By the toolkit itself, as a person has it.
TEST(WindowBox, IsNotTakenAlongByTheProgressWindow) {
    const OwnSettings own;
    UseWindows();
    auto& progress = Shared<frmShortImport>();
    progress.Begin(frmShortImport::Work::Import);
    ASSERT_TRUE(WaitActive("frmShortImport"));
    progress.CloseSoon();
    const auto stayed = std::make_shared<bool>(false);
    Soon(
        [stayed] {
            *stayed = BoxOnScreen().has_value();
            if (*stayed) CloseBox();
        },
        400);
    ShowMessage(u"import", u"нет");
    EXPECT_TRUE(*stayed);
    EXPECT_TRUE(WaitGone("frmShortImport"));
}

}  // namespace
}  // namespace tav
