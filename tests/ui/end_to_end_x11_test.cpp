// One session as a person has it, with the keys and clicks of a real X server (xdotool sends them): an empty
// database is filled from a folder typed in, summed up for a half-year, and cleared.

#include "samples/generator.h"
#include "support/screen_qt.h"
#include "ui/desktop.h"

namespace tav {
namespace {

using namespace test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// The event loop runs while the server delivers.
void Send(const std::string& arguments) {
    ASSERT_EQ(std::system(("xdotool " + arguments).c_str()), 0) << arguments;
    WaitFor(50);
}

// Keys go to the window that the window manager has made the active one, when it has put it where it stays.
bool WaitSettled(const std::string& window) {
    const bool active = WaitActive(window);
    WaitFor(300);
    return active;
}

void ClickAt(const Spot& spot) {
    ASSERT_TRUE(WaitSettled(spot.window));
    auto* widget = In(spot);
    ASSERT_TRUE(Wait([=] { return widget->isEnabled(); })) << spot.control;
    const QPoint at = widget->mapToGlobal(widget->rect().center());
    Send("mousemove " + std::to_string(at.x()) + " " + std::to_string(at.y()) + " click 1");
}

bool WaitText(const std::string& label, const std::string& text) {
    return Wait([=] { return TextOf({"frmmain", label}).find(text) != std::string::npos; });
}

class Session : public Desktop {};

TEST_F(Session, FromAnEmptyDatabaseToASummaryAndBack) {
    samples::SampleFolder(folder_ / u"in");
    WriteSetting(u"ImportPath", u"");
    Start();
    ClickAt({"frmmain", "txtImport"});
    Send("type '" + ToUtf8(folder_ / u"in") + "'");
    ASSERT_TRUE(WaitText("lblInfoFile", "Подлежат загрузке: 19"));

    // A Russian keyboard, for the mnemonics.
    ASSERT_EQ(std::system("setxkbmap ru"), 0);
    WaitFor(200);
    Send("key alt+Cyrillic_i");
    ASSERT_TRUE(WaitText("lblInfoBase", "Выписок в базе данных: 10"));
    EXPECT_THAT(RowsOf({"frmmain", "lstBase"}), SizeIs(14));

    ClickAt({"frmmain", "Command3"});
    ASSERT_TRUE(WaitSettled("frmFilter"));
    // From the codes, which have the focus first, to the tree, and down to the first year.
    Send("key Tab Down Return");
    EXPECT_THAT(Opened("index"), EndsWith(".doc\n"));
    Send("key Escape");
    EXPECT_TRUE(WaitGone("frmFilter"));

    WhenShown("frmDialog", [] { ClickAt({"frmDialog", "Command1"}); });
    ClickAt({"frmmain", "Command2"});
    EXPECT_TRUE(WaitText("lblInfoBase", "Выписок в базе данных: 0"));
    EXPECT_THAT(RowsOf({"frmmain", "lstBase"}), IsEmpty());
    ASSERT_TRUE(WaitSettled("frmmain"));
    Send("key alt+Cyrillic_ze");
    EXPECT_TRUE(WaitGone("frmmain"));
    EXPECT_THAT(Shown(), IsEmpty());
}

}  // namespace
}  // namespace tav
