// The windows as Qt's widgets, and over the settings file of Linux.
#include <QHeaderView>
#include <QLabel>
#include <QTreeView>
#include <cstdlib>

#include "support/screen_qt.h"
#include "ui/session.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

class WindowsQt : public Desktop {};

TEST_F(WindowsQt, FitOnASmallScreenWithALongName) {
    Text name = u"Общество";
    for (int i = 0; i < 20; ++i) name += u" с ограниченной";
    WriteSetting(u"NameINNKPP", name);
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 0"));
    QWidget* window = WindowNamed("frmmain");
    window->resize(780, 670);
    EXPECT_EQ(window->size(), QSize(780, 670));
    for (const char* label : {"lblInfoName", "Label5", "lblInfoFile", "lblInfoBase"}) {
        const auto* shown = In<QLabel>(Main(label));
        EXPECT_GE(shown->height(), shown->heightForWidth(shown->width())) << label;
    }
    // Size and columns are those of the last time.
    In<QTreeView>(Main("lstFile"))->header()->resizeSection(1, 77);
    CloseWindow("frmmain");
    Start();
    EXPECT_NEAR(WindowNamed("frmmain")->width(), 780, 1);
    EXPECT_NEAR(WindowNamed("frmmain")->height(), 670, 1);
    EXPECT_NEAR(In<QTreeView>(Main("lstFile"))->header()->sectionSize(1), 77, 1);
    EXPECT_EQ(In(Main("txtOut"))->accessibleName(), "Переносить импортированные файлы в папку:");
    EXPECT_EQ(In(Main("cmdImport"))->accessibleName(), "Выбор папки с файлами из ТАВ в формате rtf");
}

class SessionsQt : public Session {};

TEST_F(SessionsQt, MakeTheDatabaseThatIsMissing) {
    Play("created");
}

TEST_F(SessionsQt, ShowTheDatabaseBesideAFolderThatCannotBeRead) {
    Play("unreadable");
}

// A setting that makes no sense leaves the others alone; settings that cannot be written are told of.
TEST_F(WindowsQt, LosesNoSettingInSilence) {
    WriteSetting(u"ChkOut", u"abc");
    WriteSetting(u"OutPath", u"/куда");
    Start();
    CloseWindow("frmmain");
    EXPECT_EQ(SettingText(u"OutPath"), u"/куда");
    const std::string file = std::getenv("TAV_SETTINGS");
    ::setenv("TAV_SETTINGS", (ToUtf8(folder_ / u"PlX_Base.mdb") + "/settings").c_str(), 1);
    Start();
    CloseWindow("frmmain");
    ::setenv("TAV_SETTINGS", file.c_str(), 1);
    EXPECT_THAT(Shown(), Contains(AllOf(HasSubstr("Form_Load"), HasSubstr("ChkOut = abc"))));
    EXPECT_THAT(Shown(), Contains(AllOf(HasSubstr("Папки не сохранены"), HasSubstr("PlX_Base.mdb"))));
}

}  // namespace
}  // namespace tav
