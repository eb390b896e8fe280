// One form with every kind of control, and what it hears.
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "forms/forms.h"
#include "support/screen.h"

namespace tav::test {

enum Control : std::size_t {
    kBox,
    kAsk,
    kFolder,
    kBrowse,
    kAll,
    kRows,
    kKind,
    kTree,
    kBar,
    kLook,
    kTick,
    kNote,
    kOk,
    kCancel
};

inline constexpr ListColumn kColumns[] = {{u"Имя", 10}, {u"День", 12, ColumnOrder::Dates}};
inline const std::vector<ControlPlan> kControls = {
    {.name = u"Box", .kind = ControlKind::Frame, .caption = u"Папка & период", .place = {.column_span = 2}},
    {.name = u"Ask",
     .kind = ControlKind::Label,
     .caption = u"Папка <b>&</b>:",
     .place = {0, 0, 1, u"Box"},
     .mnemonic = u'П'},
    {.name = u"Folder", .kind = ControlKind::TextBox, .place = {0, 1, 1, u"Box"}},
    {.name = u"Browse",
     .kind = ControlKind::PictureButton,
     .caption = u"…",
     .tool_tip = u"<b>Обновить</b>",
     .place = {0, 2, 1, u"Box"},
     .mnemonic = u'О',
     .picture = Picture::Refresh},
    {.name = u"All",
     .kind = ControlKind::CheckBox,
     .caption = u"R&D все",
     .tool_tip = u"Все",
     .place = {1, 0, 2, u"Box"},
     .mnemonic = u'd'},
    {.name = u"Rows", .kind = ControlKind::ListBox, .place = {1, 0}, .columns = kColumns},
    {.name = u"Kind", .kind = ControlKind::ComboBox, .place = {2, 0}},
    {.name = u"Tree", .kind = ControlKind::TreeView, .place = {1, 1}},
    {.name = u"Bar", .kind = ControlKind::ProgressBar, .place = {3, 0}},
    {.name = u"Look", .kind = ControlKind::Picture, .place = {3, 1}, .picture = Picture::Quarter},
    {.name = u"Tick", .kind = ControlKind::Timer},
    {.name = u"Note", .kind = ControlKind::Memo, .caption = u"<i>строка</i>\nвторая", .place = {4, 0, 2}},
    {.name = u"Ok", .kind = ControlKind::Button, .caption = u"Готово", .place = {5, 0}, .mnemonic = u'Г'},
    {.name = u"Cancel", .kind = ControlKind::Button, .caption = u"Отмена", .place = {5, 1}},
};
inline const FormPlan kPlan = {.name = u"Probe",
                               .caption = u"Проба",
                               .controls = kControls,
                               .width = 70,
                               .height = 25,
                               .default_button = u"Ok",
                               .cancel_button = u"Cancel"};

using Heard = std::vector<std::pair<std::size_t, Event>>;

class Recorder : public FormEvents {
 public:
    void OnEvent(std::size_t control, Event event) override {
        heard.emplace_back(control, event);
        if (react) react();
    }
    void OnCloseRequest() override {
        ++close_requests;
        if (react) react();
    }
    // What was heard since the last time.
    Heard Take() { return std::exchange(heard, {}); }

    Heard heard;
    int close_requests = 0;
    std::function<void()> react;
};

// The form "Probe" on the screen.
class ProbeForm : public ::testing::Test {
 protected:
    void SetUp() override {
        window = CurrentToolkit().Create(kPlan, events);
        window->SetRows(kRows, {{u"один", u"<b>первая</b>"}, {u"два", u"вторая"}});
        window->SetRows(kKind, {{u"месяц", {}}, {u"квартал", {}}, {u"год", {}}});
        window->SetNodes(kTree, {{u"2011", u"", u"2011 год", Picture::Year, true},
                                 {u"2011-1", u"2011", u"1 квартал", Picture::Quarter}});
        window->Show();
        ASSERT_TRUE(WaitActive("Probe"));
    }
    // A discarded window goes with the next turn of the event loop.
    void TearDown() override {
        window.reset();
        ASSERT_TRUE(WaitGone("Probe"));
    }
    static Spot In(const std::string& control) { return {"Probe", control}; }
    // What is heard next: a mnemonic shows the button pressed for a moment first.
    Heard Await() {
        EXPECT_TRUE(Wait([&] { return !events.heard.empty(); }));
        return events.Take();
    }
    static Heard Clicks(std::size_t control) { return {{control, Event::Click}}; }
    static Heard Opens(std::size_t control) { return {{control, Event::DblClick}}; }

    Recorder events;
    OwnedWindow window;
};

}  // namespace tav::test
