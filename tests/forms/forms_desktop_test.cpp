// The contract of forms, on every toolkit: keys and clicks on a form with every kind of control.
#include <algorithm>
#include <cmath>

#include "forms/probe_form.h"

namespace tav {
namespace {

using namespace test;

class Forms : public ProbeForm {};

TEST_F(Forms, TheTabKeyGoesInThePlansOrder) {
    std::string names;
    for (int i = 0; i < 10; ++i, Press(Key::Tab)) names += Focused() + " ";
    EXPECT_EQ(names, "Folder Browse All Rows Kind Tree Note Ok Cancel Folder ");
}

TEST_F(Forms, MnemonicsPressAndLabelsLead) {
    Focus(In("Cancel"));
    PressAlt(u'Г');
    EXPECT_EQ(Await(), Clicks(kOk));
    PressAlt(u'О');  // a letter that only the tool-tip has
    EXPECT_EQ(Await(), Clicks(kBrowse));
    PressAlt(u'D');
    EXPECT_EQ(Await(), Clicks(kAll));
    EXPECT_TRUE(window->Checked(kAll));
    PressAlt(u'П');
    EXPECT_EQ(Focused(), "Folder");
}

// By focused control: what Enter and Esc do there.
TEST_F(Forms, EnterAndEscapePressTheirButtonsUnlessTheControlHasAUseForThem) {
    for (const char* name : {"Folder", "All", "Rows", "Kind", "Tree", "Note", "Ok"}) {
        Focus(In(name));
        Press(Key::Enter);
        EXPECT_EQ(events.Take(), Clicks(kOk)) << name;
        Press(Key::Escape);
        EXPECT_EQ(events.Take(), Clicks(kCancel)) << name;
    }
    Focus(In("Browse"));
    Press(Key::Enter);
    EXPECT_EQ(events.Take(), Clicks(kBrowse));
    window->Enable(kCancel, false);
    Press(Key::Escape);
    EXPECT_EQ(events.Take(), Heard());
    EXPECT_TRUE(OnScreen("Probe"));
}

TEST_F(Forms, ASelectedRowIsOpenedByEnterAndByADoubleClick) {
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    DoubleClickRow(In("Rows"), -1);
    EXPECT_EQ(events.Take(), Heard());

    DoubleClickRow(In("Rows"), 1);
    EXPECT_EQ(events.Take(), Opens(kRows));
    EXPECT_EQ(window->SelectedRow(kRows), 1);
    DoubleClickRow(In("Rows"), -1);
    EXPECT_EQ(events.Take(), Heard());
    window->SelectRow(kRows, 1);
    Focus(In("Rows"));
    Press(Key::Up);
    Press(Key::Enter);
    EXPECT_EQ(events.Take(), Opens(kRows));
    EXPECT_EQ(window->SelectedRow(kRows), 0);

    DoubleClickNode(In("Tree"), u"1 квартал");
    EXPECT_EQ(window->SelectedNode(kTree), u"2011-1");
    Focus(In("Tree"));
    Press(Key::Enter);
    EXPECT_EQ(events.Take(), (Heard{{kTree, Event::DblClick}, {kTree, Event::DblClick}}));
}

TEST_F(Forms, RowsAndNodesAreReplacedWithoutASelection) {
    window->SelectRow(kRows, 1);
    window->SelectRow(kKind, 2);
    window->SelectNode(kTree, u"2011");
    EXPECT_EQ(window->SelectedRow(kRows), 1);
    EXPECT_EQ(window->SelectedRow(kKind), 2);
    EXPECT_EQ(window->SelectedNode(kTree), u"2011");
    window->SetRows(kRows, std::vector<ListRow>(20000, {u"строка", {}}));
    window->SetRows(kKind, {{u"месяц", {}}});
    window->SetNodes(kTree, {{u"a", u"", u"a"}, {u"b", u"a", u"b"}, {u"c", u"a", u"c"}, {u"d", u"", u"d"}});
    Focus(In("Tree"));
    WaitFor(1);
    EXPECT_EQ(RowsOf(In("Rows")).size(), 20000U);
    EXPECT_EQ(NodesOf(In("Tree")), (std::vector<std::string>{"a", " b", " c", "d"}));
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    EXPECT_EQ(window->SelectedRow(kKind), -1);
    EXPECT_EQ(window->SelectedNode(kTree), u"");
    window->SelectRow(kRows, 20000);
    window->SelectNode(kTree, u"2011");
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    EXPECT_EQ(window->SelectedNode(kTree), u"");
    EXPECT_EQ(events.Take(), Heard());
}

// A click on a title sorts upwards, downwards, and not at all; rows keep their numbers, and stay selected.
TEST_F(Forms, AListIsSortedByItsColumns) {
    window->SetRows(kRows, {{u"0", {}, {u"б", u"01.02.2010 - 1"}},
                            {u"1", {}, {u"А", u"02.01.2011"}},
                            {u"2", {}, {u"в", u"01.12.2009"}},
                            {u"3", {}, {}}});
    window->SelectRow(kRows, 0);
    const auto sorted = [&](int column) {
        ClickTitle(In("Rows"), column);
        std::string order;
        for (const std::string& row : RowsOf(In("Rows"))) order += row;
        return order + " " + std::to_string(window->SelectedRow(kRows));
    };
    std::string seen;
    for (const int column : {0, 0, 0, 1, 1, 0}) seen += sorted(column) + "; ";
    EXPECT_EQ(seen, "3102 0; 2013 0; 0123 0; 3201 0; 1023 0; 3102 0; ");
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(Forms, AComboBoxTellsOfAnotherChoiceOnly) {
    Focus(In("Kind"));
    Press(Key::Down);
    EXPECT_EQ(events.Take(), Clicks(kKind));
    EXPECT_EQ(window->SelectedRow(kKind), 0);
    Press(Key::Up);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(Forms, ChangeComesWhenATextReallyDiffers) {
    window->SetText(kFolder, u"a");
    window->SetText(kFolder, u"a");
    EXPECT_EQ(events.Take().size(), 1U);
    Type(In("Folder"), u"a");
    EXPECT_EQ(events.Take(), Heard());
    Type(In("Folder"), u"ab");
    EXPECT_EQ(events.Take(), (Heard{{kFolder, Event::Change}}));
    EXPECT_EQ(window->GetText(kFolder), u"ab");
    window->Check(kAll, true);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(Forms, TextsArePlainAndComeBackAsTheyWere) {
    const Text odd = u"\xFEFF<b>&x</b> \xDCFF";
    for (const std::size_t control : {kBox, kAsk, kFolder, kAll, kNote, kOk}) {
        window->SetText(control, odd);
        EXPECT_EQ(window->GetText(control), odd) << control;
    }
    const std::string plain = "<b>&Пх</b>";
    for (const auto& [control, name] :
         {std::pair{kBox, "Box"}, {kAsk, "Ask"}, {kFolder, "Folder"}, {kNote, "Note"}}) {
        window->SetText(control, FromUtf8(plain));
        EXPECT_EQ(TextOf(In(name)), plain);
    }
}

TEST_F(Forms, ControlsRefuseWhatTheyDoNotHave) {
    EXPECT_THROW(window->SetRows(kOk, {}), std::logic_error);
    EXPECT_THROW(window->Enable(kTick, true), std::logic_error);
    EXPECT_THROW(window->GetText(kBar), std::logic_error);
    window->Enable(kBox, false);
    EXPECT_FALSE(window->Enabled(kBox));
    EXPECT_TRUE(window->Enabled(kFolder));
    EXPECT_FALSE(IsEnabled(In("Folder")));
}

// The keyboard goes on from a control that is disabled under it.
TEST_F(Forms, ADisabledControlLosesTheKeyboard) {
    Focus(In("Ok"));
    window->Enable(kOk, false);
    EXPECT_EQ(Focused(), "Cancel");
}

TEST_F(Forms, TheBarTakesPartsOfOne) {
    for (const auto& [part, value] :
         std::vector<std::pair<double, int>>{{0.5, 500}, {7, 1000}, {-1, 0}, {std::nan(""), 0}}) {
        window->SetBar(kBar, part);
        EXPECT_EQ(BarOf(In("Bar")), value) << part;
    }
}

TEST_F(Forms, ATimerTicksUntilItIsStopped) {
    window->SetInterval(kTick, 1);
    EXPECT_TRUE(Wait([&] { return events.heard.size() >= 3; }));
    window->SetInterval(kTick, 0);
    events.Take();
    WaitFor(20);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(Forms, TheWindowClosesOnlyByTheFormsWill) {
    CloseWindow("Probe");
    EXPECT_EQ(events.close_requests, 1);
    EXPECT_TRUE(OnScreen("Probe"));
    events.react = [&] { window->Hide(); };
    CloseWindow("Probe");
    EXPECT_FALSE(OnScreen("Probe"));
}

TEST_F(Forms, AModalWindowWaitsAndTheLoopRunsUntilNoneIsShown) {
    FormPlan plan = kPlan;
    plan.name = u"Other";
    Recorder others;
    auto other = CurrentToolkit().Create(plan, others);
    int step = 0;
    Soon([&] {
        EXPECT_EQ(++step, 1);
        EXPECT_TRUE(OnScreen("Other"));
        EXPECT_TRUE(HeldUp("Probe"));
        EXPECT_FALSE(HeldUp("Other"));
        other->Hide();
        EXPECT_FALSE(HeldUp("Probe"));
    });
    other->ShowModal(window.get());
    EXPECT_EQ(++step, 2);
    other->Show(nullptr);
    EXPECT_FALSE(HeldUp("Probe"));
    other->Hide();
    Soon([&] { other.reset(); });  // while it is shown, as another window's handler would
    other->ShowModal(nullptr);
    EXPECT_EQ(++step, 3);
    Soon([&] {
        ++step;
        window->Hide();
    });
    CurrentToolkit().RunUntilClosed();
    EXPECT_EQ(step, 4);
    CurrentToolkit().RunUntilClosed();
}

TEST_F(Forms, AMessageIsPlainAndSurvivesItsOwnersEnd) {
    Soon([&] {
        const auto box = BoxOnScreen();
        ASSERT_TRUE(box);
        EXPECT_EQ(box->title, "import");
        EXPECT_EQ(box->text, "<b>&");
        EXPECT_TRUE(HeldUp("Probe"));
        CloseBox();
    });
    CurrentToolkit().ShowMessage({u"import", u"<b>&", MessageIcon::Information});
    window->Show();
    ASSERT_TRUE(WaitActive("Probe"));
    // The box may go with its owner, or stay to be read.
    Soon([&] {
        window.reset();
        Soon([] {
            if (BoxOnScreen()) CloseBox();
        });
    });
    CurrentToolkit().ShowMessage({u"import", u"нет", MessageIcon::Critical});
    EXPECT_EQ(window, nullptr);
}

// The handler of the window's own button waits in a message box meanwhile.
TEST_F(Forms, AWindowIsDiscardedWhileItsHandlerWaits) {
    events.react = [&] {
        Soon([&] {
            window.reset();
            Soon([] { CloseBox(); });
        });
        CurrentToolkit().ShowMessage({u"import", u"нет", MessageIcon::Critical});
    };
    Focus(In("Folder"));
    Press(Key::Enter);
    EXPECT_EQ(events.Take(), Clicks(kOk));
    EXPECT_EQ(window, nullptr);
    EXPECT_FALSE(OnScreen("Probe"));
}

}  // namespace
}  // namespace tav
