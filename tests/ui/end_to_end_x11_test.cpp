// The session that a person has, with the keys and clicks of a real X server: xdotool sends them.

#include "support/screen_qt.h"
#include "ui/session.h"

namespace tav {
namespace {

using namespace test;

// The event loop runs while the server delivers.
void Send(const std::string& arguments) {
    ASSERT_EQ(std::system(("xdotool " + arguments).c_str()), 0) << arguments;
    WaitFor(50);
}

// Keys go to the window that the window manager has made the active one, when it has put it where it stays.
void ClickAt(const Spot& spot) {
    ASSERT_TRUE(WaitActive(spot.window));
    WaitFor(300);
    auto* widget = In(spot);
    ASSERT_TRUE(Wait([=] { return widget->isEnabled(); })) << spot.control;
    const QPoint at = widget->mapToGlobal(widget->rect().center());
    Send("mousemove " + std::to_string(at.x()) + " " + std::to_string(at.y()) + " click 1");
}

class X11Session : public Session {
 protected:
    X11Session() { many_ = 10000; }  // a hand takes its time
    void ClickOn(const Spot& spot) override { ClickAt(spot); }
    void TypeInto(const Spot& spot, TextView words) override {
        ClickAt(spot);
        Send("type '" + ToUtf8(words) + "'");
    }
    void PressKey(TextView key) override {
        if (key != u"Alt+И") return Send("key " + ToUtf8(key));
        // A Russian keyboard, for the mnemonics.
        ASSERT_EQ(std::system("setxkbmap ru"), 0);
        WaitFor(200);
        Send("key alt+Cyrillic_i");
    }
};

TEST_F(X11Session, FromAnEmptyDatabaseToASummaryAndBack) {
    Play("session");
}

}  // namespace
}  // namespace tav
