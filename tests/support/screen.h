// The windows as a person at the screen has them, whatever toolkit shows them: forms and their controls by
// the names in their plans, what is seen of them, clicks and keys.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "common/message_box.h"

namespace tav::test {

// Runs the event loop until then, for a minute at most; whether it came.
bool Wait(const std::function<bool()>& until);
void WaitFor(int milliseconds);
// In the event loop, whoever runs it by then.
void Soon(const std::function<void()>& action, int milliseconds = 0);

bool OnScreen(const std::string& window);
inline bool WaitShown(const std::string& window) {
    return Wait([=] { return OnScreen(window); });
}
inline bool WaitGone(const std::string& window) {
    return Wait([=] { return !OnScreen(window); });
}
inline void WhenShown(const std::string& window, const std::function<void()>& action) {
    Soon([=] { OnScreen(window) ? action() : WhenShown(window, action); }, 1);
}
// Whether it is in front and has the keyboard, or comes to.
bool WaitActive(const std::string& window);
// By its close button.
void CloseWindow(const std::string& window);
// Whether it takes no input while another is modal.
bool HeldUp(const std::string& window);

// A form and a control in it. A test fails when they are not on the screen.
struct Spot {
    std::string window;
    std::string control;
};
std::string TextOf(const Spot& spot);
bool IsEnabled(const Spot& spot);
bool IsTicked(const Spot& spot);
// The selected row of a list box; empty when none is.
std::string SelectedOf(const Spot& spot);
// Of a list box or a combo box.
std::vector<std::string> RowsOf(const Spot& spot);
// A tree's nodes, each indented by its depth.
std::vector<std::string> NodesOf(const Spot& spot);
// Thousandths.
int BarOf(const Spot& spot);
// The name of the control that has the keyboard.
std::string Focused();

void Focus(const Spot& spot);
void Click(const Spot& button);  // or on a memo
// Over what is there, key by key.
void Type(const Spot& spot, TextView text);
// A double click on a row, or below the last for -1.
void DoubleClickRow(const Spot& list, int row);
// On the title of a list's column.
void ClickTitle(const Spot& list, int column);
// On the first node whose text begins so.
void ChooseNode(const Spot& tree, TextView text);
void DoubleClickNode(const Spot& tree, TextView text);

enum class Key { Tab, Enter, Escape, Up, Down, F5 };
// To the control that has the keyboard.
void Press(Key key);
void PressAlt(char16_t letter);

// The message box that is shown, without its icon.
struct BoxSeen {
    std::string title;
    std::string text;
};
std::optional<BoxSeen> BoxOnScreen();
void CloseBox();

}  // namespace tav::test
