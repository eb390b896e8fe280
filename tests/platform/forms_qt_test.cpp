// One form with every kind of control, driven by keys and clicks on the widgets.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <cmath>
#include <functional>

#include "platform/forms.h"

namespace tav {
namespace {

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

const std::vector<ControlPlan> kControls = {
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
    {.name = u"Rows", .kind = ControlKind::ListBox, .place = {1, 0}},
    {.name = u"Kind", .kind = ControlKind::ComboBox, .place = {2, 0}},
    {.name = u"Tree", .kind = ControlKind::TreeView, .place = {1, 1}},
    {.name = u"Bar", .kind = ControlKind::ProgressBar, .place = {3, 0}},
    {.name = u"Look", .kind = ControlKind::Picture, .place = {3, 1}, .picture = Picture::Quarter},
    {.name = u"Tick", .kind = ControlKind::Timer},
    {.name = u"Note", .kind = ControlKind::Memo, .caption = u"<i>строка</i>\nвторая", .place = {4, 0, 2}},
    {.name = u"Ok", .kind = ControlKind::Button, .caption = u"Готово", .place = {5, 0}, .mnemonic = u'Г'},
    {.name = u"Cancel", .kind = ControlKind::Button, .caption = u"Отмена", .place = {5, 1}},
};
const FormPlan kPlan = {.name = u"Probe",
                        .caption = u"Проба",
                        .controls = kControls,
                        .width = 70,
                        .height = 25,
                        .default_button = u"Ok",
                        .cancel_button = u"Cancel"};

// In the event loop, once it runs.
void Soon(const std::function<void()>& action) {
    auto* timer = new QTimer(QApplication::instance());
    timer->setSingleShot(true);
    timer->callOnTimeout([timer, action] {
        timer->deleteLater();
        action();
    });
    timer->start(0);
}

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

class FormsQt : public ::testing::Test {
 protected:
    void SetUp() override {
        window = CurrentToolkit().Create(kPlan, events);
        window->SetRows(kRows, {{u"один", u"<b>первая</b>"}, {u"два", u"вторая"}});
        window->SetRows(kKind, {{u"месяц", {}}, {u"квартал", {}}, {u"год", {}}});
        window->SetNodes(kTree, {{u"2011", u"", u"2011 год", Picture::Year, true},
                                 {u"2011-1", u"2011", u"1 квартал", Picture::Quarter}});
        window->Show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Top()));
    }
    // A discarded window goes with the next turn of the event loop.
    void TearDown() override {
        window.reset();
        QTest::qWait(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static QWidget* Top() {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "Probe") return top;
        }
        return nullptr;
    }
    template <class Widget = QWidget>
    static Widget* Find(const char* name) {
        return Top()->findChild<Widget*>(name);
    }
    static void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QString text = key < 0x1000 ? QString(QChar(key)) : QString();
        QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), static_cast<Qt::Key>(key), text,
                            modifiers);
    }
    static void DoubleClick(QAbstractItemView* view, const QModelIndex& index) {
        const QPoint at = index.isValid() ? view->visualRect(index).center()
                                          : view->viewport()->rect().bottomRight() - QPoint(3, 3);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    }
    // What is heard next: a mnemonic shows the button pressed for a moment first.
    Heard Await() {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !events.heard.empty(); }));
        return events.Take();
    }
    static Heard Clicks(std::size_t control) { return {{control, Event::Click}}; }
    static Heard Opens(std::size_t control) { return {{control, Event::DblClick}}; }

    Recorder events;
    OwnedWindow window;
};

TEST_F(FormsQt, TheTabKeyGoesInThePlansOrder) {
    QStringList names;
    for (int i = 0; i < 10; ++i, Key(Qt::Key_Tab)) names << QApplication::focusWidget()->objectName();
    EXPECT_EQ(names.join(' ').toStdString(), "Folder Browse All Rows Kind Tree Note Ok Cancel Folder");
}

TEST_F(FormsQt, MnemonicsPressAndLabelsLead) {
    Find("Cancel")->setFocus();
    Key(0x0413, Qt::AltModifier);  // Г
    EXPECT_EQ(Await(), Clicks(kOk));
    Key(0x041E, Qt::AltModifier);  // О, a letter that only the tool-tip has
    EXPECT_EQ(Await(), Clicks(kBrowse));
    Key(Qt::Key_D, Qt::AltModifier);
    EXPECT_EQ(Await(), Clicks(kAll));
    EXPECT_TRUE(window->Checked(kAll));
    Key(0x041F, Qt::AltModifier);  // П
    EXPECT_EQ(QApplication::focusWidget(), Find("Folder"));
}

// By focused control: what Enter and Esc do there.
TEST_F(FormsQt, EnterAndEscapePressTheirButtonsUnlessTheControlHasAUseForThem) {
    for (const char* name : {"Folder", "All", "Rows", "Kind", "Tree", "Note", "Ok"}) {
        Find(name)->setFocus();
        Key(Qt::Key_Return);
        EXPECT_EQ(events.Take(), Clicks(kOk)) << name;
        Key(Qt::Key_Escape);
        EXPECT_EQ(events.Take(), Clicks(kCancel)) << name;
    }
    Find("Browse")->setFocus();
    Key(Qt::Key_Enter);
    EXPECT_EQ(events.Take(), Clicks(kBrowse));
    window->Enable(kCancel, false);
    Key(Qt::Key_Escape);
    EXPECT_EQ(events.Take(), Heard());
    EXPECT_TRUE(Top()->isVisible());
}

TEST_F(FormsQt, ASelectedRowIsOpenedByEnterAndByADoubleClick) {
    auto* rows = Find<QListView>("Rows");
    auto* tree = Find<QTreeView>("Tree");
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    DoubleClick(rows, {});
    DoubleClick(tree, {});
    EXPECT_EQ(events.Take(), Heard());

    DoubleClick(rows, rows->model()->index(1, 0));
    EXPECT_EQ(events.Take(), Opens(kRows));
    EXPECT_EQ(window->SelectedRow(kRows), 1);
    Key(Qt::Key_Up);
    Key(Qt::Key_Return);
    EXPECT_EQ(events.Take(), Opens(kRows));
    EXPECT_EQ(window->SelectedRow(kRows), 0);

    DoubleClick(tree, tree->model()->index(0, 0, tree->model()->index(0, 0)));
    EXPECT_EQ(window->SelectedNode(kTree), u"2011-1");
    Key(Qt::Key_Enter);
    EXPECT_EQ(events.Take(), (Heard{{kTree, Event::DblClick}, {kTree, Event::DblClick}}));
}

TEST_F(FormsQt, RowsAndNodesAreReplacedWithoutASelection) {
    window->SelectRow(kRows, 1);
    window->SelectRow(kKind, 2);
    window->SelectNode(kTree, u"2011");
    EXPECT_EQ(window->SelectedRow(kRows), 1);
    EXPECT_EQ(window->SelectedRow(kKind), 2);
    EXPECT_EQ(window->SelectedNode(kTree), u"2011");
    window->SetRows(kRows, std::vector<ListRow>(20000, {u"строка", {}}));
    window->SetRows(kKind, {{u"месяц", {}}});
    window->SetNodes(kTree, {{u"a", u"", u"a"}});
    QTest::qWait(1);
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    EXPECT_EQ(window->SelectedRow(kKind), -1);
    EXPECT_EQ(window->SelectedNode(kTree), u"");
    window->SelectRow(kRows, 20000);
    window->SelectNode(kTree, u"2011");
    EXPECT_EQ(window->SelectedRow(kRows), -1);
    EXPECT_EQ(window->SelectedNode(kTree), u"");
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(FormsQt, TheListScrollsToTheEndOfItsWidestRow) {
    auto* rows = Find<QListView>("Rows");
    window->SetRows(kRows, {{u"короткая", {}}, {Text(300, u'ш'), {}}});
    QTest::qWait(1);
    const int width = rows->fontMetrics().horizontalAdvance(QString(300, u'ш'));
    EXPECT_GE(rows->horizontalScrollBar()->maximum() + rows->viewport()->width(), width);
}

TEST_F(FormsQt, AComboBoxTellsOfAnotherChoiceOnly) {
    Find("Kind")->setFocus();
    Key(Qt::Key_Down);
    EXPECT_EQ(events.Take(), Clicks(kKind));
    EXPECT_EQ(window->SelectedRow(kKind), 0);
    Key(Qt::Key_Up);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(FormsQt, ChangeComesWhenATextReallyDiffers) {
    window->SetText(kFolder, u"a");
    window->SetText(kFolder, u"a");
    EXPECT_EQ(events.Take().size(), 1U);
    Find<QLineEdit>("Folder")->selectAll();
    QTest::keyClicks(Find("Folder"), "a");
    EXPECT_EQ(events.Take(), Heard());
    QTest::keyClicks(Find("Folder"), "b");
    EXPECT_EQ(events.Take(), (Heard{{kFolder, Event::Change}}));
    EXPECT_EQ(window->GetText(kFolder), u"ab");
    window->Check(kAll, true);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(FormsQt, TextsArePlainAndComeBackAsTheyWere) {
    const Text odd = u"\xFEFF<b>&x</b> \xDCFF";
    for (const std::size_t control : {kBox, kAsk, kFolder, kAll, kNote, kOk}) {
        window->SetText(control, odd);
        EXPECT_EQ(window->GetText(control), odd) << control;
    }
    window->SetText(kAsk, u"<b>&</b>");
    EXPECT_EQ(Find<QLabel>("Ask")->textFormat(), Qt::PlainText);
    EXPECT_EQ(Find<QLabel>("Ask")->text(), "<b>&&</b>");
    EXPECT_EQ(Find<QPushButton>("Ok")->text().mid(1), QString("<b>&&x</b> ") + QChar(0xDCFF));
    EXPECT_EQ(Find("Browse")->accessibleName(), "<b>Обновить</b>");
    const QString row_tip = Find<QListView>("Rows")->model()->index(0, 0).data(Qt::ToolTipRole).toString();
    for (const QString& tip : {Find("Browse")->toolTip(), row_tip})
        EXPECT_TRUE(tip.contains("&lt;b&gt;")) << tip.toStdString();
    EXPECT_EQ(Find("All")->toolTip(), "Все");
}

TEST_F(FormsQt, ControlsRefuseWhatTheyDoNotHave) {
    EXPECT_THROW(window->SetRows(kOk, {}), std::logic_error);
    EXPECT_THROW(window->Enable(kTick, true), std::logic_error);
    EXPECT_THROW(window->GetText(kBar), std::logic_error);
    window->Enable(kBox, false);
    EXPECT_FALSE(window->Enabled(kBox));
    EXPECT_TRUE(window->Enabled(kFolder));
}

TEST_F(FormsQt, TheBarTakesPartsOfOne) {
    for (const auto& [part, value] :
         std::vector<std::pair<double, int>>{{0.5, 500}, {7, 1000}, {-1, 0}, {std::nan(""), 0}}) {
        window->SetBar(kBar, part);
        EXPECT_EQ(Find<QProgressBar>("Bar")->value(), value) << part;
    }
}

TEST_F(FormsQt, ATimerTicksUntilItIsStopped) {
    window->SetInterval(kTick, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return events.heard.size() >= 3; }));
    window->SetInterval(kTick, 0);
    events.Take();
    QTest::qWait(20);
    EXPECT_EQ(events.Take(), Heard());
}

TEST_F(FormsQt, TheWindowClosesOnlyByTheFormsWill) {
    Top()->close();
    EXPECT_EQ(events.close_requests, 1);
    EXPECT_TRUE(Top()->isVisible());
    events.react = [&] { window->Hide(); };
    EXPECT_TRUE(Top()->close());
    EXPECT_FALSE(Top()->isVisible());
}

TEST_F(FormsQt, AModalWindowWaitsAndTheLoopRunsUntilNoneIsShown) {
    Recorder others;
    auto other = CurrentToolkit().Create(kPlan, others);
    int step = 0;
    Soon([&] {
        EXPECT_EQ(++step, 1);
        EXPECT_EQ(QApplication::activeModalWidget(), dynamic_cast<QWidget*>(other.get()));
        other->Hide();
    });
    other->ShowModal(window.get());
    EXPECT_EQ(++step, 2);
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

TEST_F(FormsQt, AMessageIsPlainAndSurvivesItsOwnersEnd) {
    Soon([&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "import");
        EXPECT_EQ(box->text(), "<b>&");
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->icon(), QMessageBox::Information);
        EXPECT_EQ(box->parent(), Top());
        QTest::keyClick(box, Qt::Key_Return);
    });
    CurrentToolkit().ShowMessage({u"import", u"<b>&", MessageIcon::Information});
    window->Show();  // in front again, which here no window manager sees to
    ASSERT_TRUE(QTest::qWaitForWindowActive(Top()));
    Soon([&] { window.reset(); });
    CurrentToolkit().ShowMessage({u"import", u"нет", MessageIcon::Critical});
    EXPECT_EQ(window, nullptr);
}

// The handler of the window's own button waits in a message box meanwhile.
TEST_F(FormsQt, AWindowIsDiscardedWhileItsHandlerWaits) {
    const QPointer<QWidget> top = Top();
    events.react = [&] {
        Soon([&] {
            window.reset();
            Soon([] { QApplication::activeModalWidget()->close(); });
        });
        CurrentToolkit().ShowMessage({u"import", u"нет", MessageIcon::Critical});
        EXPECT_NE(top, nullptr);
    };
    QTest::keyClick(Find("Folder"), Qt::Key_Return);
    CurrentToolkit().ProcessEvents();
    EXPECT_EQ(top, nullptr);
    EXPECT_EQ(events.Take(), Clicks(kOk));
}

TEST_F(FormsQt, AFolderIsChosenAndCancelled) {
    for (const int key : {Qt::Key_Return, Qt::Key_Escape}) {
        Soon([&] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowTitle(), "Папка");
            dialog->findChild<QLineEdit*>("fileNameEdit")->setText("/usr");
            QTest::keyClick(dialog, static_cast<Qt::Key>(key));
        });
        const Text chosen = CurrentToolkit().BrowseFolder(u"Папка", u"/tmp", window.get());
        EXPECT_EQ(chosen, key == Qt::Key_Return ? u"/usr" : u"");
    }
}

}  // namespace
}  // namespace tav
