#include "support/screen_qt.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <map>

namespace tav::test {
namespace {

QString ToQt(TextView text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}

QString WithoutMnemonic(const QString& text) {
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size()) ++i;
        out += text[i];
    }
    return out;
}

void AddNodes(const QAbstractItemModel& model, const QModelIndex& parent, std::size_t depth,
              std::vector<std::string>& lines) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex node = model.index(row, 0, parent);
        const QVariant text = node.data(Qt::UserRole);  // of a table's row
        lines.push_back(std::string(depth, ' ') +
                        (text.isValid() ? text : node.data()).toString().toStdString());
        AddNodes(model, node, depth + 1, lines);
    }
}

QModelIndex NodeOf(const QTreeView& tree, TextView text) {
    const QAbstractItemModel& model = *tree.model();
    const auto found = model.match(model.index(0, 0), Qt::DisplayRole, ToQt(text), 1,
                                   Qt::MatchStartsWith | Qt::MatchRecursive);
    EXPECT_FALSE(found.isEmpty()) << ToUtf8(text);
    return found.value(0);
}

void DoubleClick(QAbstractItemView& view, const QModelIndex& index) {
    const QPoint at = index.isValid() ? view.visualRect(index).center()
                                      : view.viewport()->rect().bottomRight() - QPoint(3, 3);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
}

void SendKey(int key, Qt::KeyboardModifiers modifiers) {
    const QString text = key < 0x1000 ? QString(QChar(key)) : QString();
    QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), static_cast<Qt::Key>(key), text,
                        modifiers);
}

}  // namespace

QWidget* WindowNamed(const std::string& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName().toStdString() == name && window->isVisible()) return window;
    }
    return nullptr;
}

bool Wait(const std::function<bool()>& until) {
    constexpr int kMilliseconds = 60'000;
    return QTest::qWaitFor(until, kMilliseconds);
}

void WaitFor(int milliseconds) {
    QTest::qWait(milliseconds);
}

void Soon(const std::function<void()>& action, int milliseconds) {
    auto* timer = new QTimer(QApplication::instance());
    timer->setSingleShot(true);
    timer->callOnTimeout([timer, action] {
        timer->deleteLater();
        action();
    });
    timer->start(milliseconds);
}

bool OnScreen(const std::string& window) {
    return WindowNamed(window) != nullptr;
}
bool WaitActive(const std::string& window) {
    return Wait([=] { return OnScreen(window) && QApplication::activeWindow() == WindowNamed(window); });
}
void CloseWindow(const std::string& window) {
    WindowNamed(window)->close();
}
bool HeldUp(const std::string& window) {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr && modal != WindowNamed(window);
}

std::string TextOf(const Spot& spot) {
    QWidget* control = In(spot);
    if (auto* edit = qobject_cast<QLineEdit*>(control)) return edit->text().toStdString();
    if (auto* memo = qobject_cast<QPlainTextEdit*>(control)) return memo->toPlainText().toStdString();
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->currentText().toStdString();
    if (auto* label = qobject_cast<QLabel*>(control)) {
        return (label->buddy() == nullptr ? label->text() : WithoutMnemonic(label->text())).toStdString();
    }
    const auto* button = qobject_cast<QAbstractButton*>(control);
    const auto* frame = qobject_cast<QGroupBox*>(control);
    return WithoutMnemonic(button != nullptr ? button->text() : frame->title()).toStdString();
}
bool IsEnabled(const Spot& spot) {
    return In(spot)->isEnabled();
}
bool IsTicked(const Spot& spot) {
    return In<QAbstractButton>(spot)->isChecked();
}

std::vector<std::string> RowsOf(const Spot& spot) {
    QWidget* list = In(spot);
    auto* combo = qobject_cast<QComboBox*>(list);
    const QAbstractItemModel& model =
        combo != nullptr ? *combo->model() : *qobject_cast<QAbstractItemView*>(list)->model();
    std::vector<std::string> rows;
    AddNodes(model, {}, 0, rows);
    return rows;
}

std::string SelectedOf(const Spot& spot) {
    const auto selected = In<QAbstractItemView>(spot)->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? "" : selected.front().data(Qt::UserRole).toString().toStdString();
}

std::vector<std::string> NodesOf(const Spot& spot) {
    std::vector<std::string> lines;
    AddNodes(*In<QTreeView>(spot)->model(), {}, 0, lines);
    return lines;
}

int BarOf(const Spot& spot) {
    return In<QProgressBar>(spot)->value();
}

std::string Focused() {
    return QApplication::focusWidget()->objectName().toStdString();
}

void Focus(const Spot& spot) {
    In(spot)->setFocus();
}

void Click(const Spot& button) {
    auto* widget = In(button);
    ASSERT_NE(widget, nullptr);
    ASSERT_TRUE(widget->isEnabled()) << button.control;
    const auto* scrolled = qobject_cast<QAbstractScrollArea*>(widget);
    QTest::mouseClick(scrolled == nullptr ? widget : scrolled->viewport(), Qt::LeftButton);
}

void Type(const Spot& spot, TextView text) {
    auto* box = In<QLineEdit>(spot);
    box->selectAll();
    for (const QChar letter : ToQt(text)) {
        QTest::sendKeyEvent(QTest::Click, box, static_cast<Qt::Key>(letter.toUpper().unicode()), letter, {});
    }
}

void DoubleClickRow(const Spot& list, int row) {
    auto* view = In<QAbstractItemView>(list);
    DoubleClick(*view, view->model()->index(row, 0));
}

void ClickTitle(const Spot& list, int column) {
    QHeaderView& header = *In<QTreeView>(list)->header();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      {header.sectionViewportPosition(column) + 8, header.height() / 2});
}

void ChooseNode(const Spot& tree, TextView text) {
    auto* view = In<QTreeView>(tree);
    view->setCurrentIndex(NodeOf(*view, text));
}

void DoubleClickNode(const Spot& tree, TextView text) {
    auto* view = In<QTreeView>(tree);
    DoubleClick(*view, NodeOf(*view, text));
}

void Press(Key key) {
    static const std::map<Key, Qt::Key> kCodes = {{Key::Tab, Qt::Key_Tab},       {Key::Enter, Qt::Key_Return},
                                                  {Key::Escape, Qt::Key_Escape}, {Key::Up, Qt::Key_Up},
                                                  {Key::Down, Qt::Key_Down},     {Key::F5, Qt::Key_F5}};
    SendKey(kCodes.at(key), Qt::NoModifier);
}

void PressAlt(char16_t letter) {
    SendKey(letter, Qt::AltModifier);
}

std::optional<BoxSeen> BoxOnScreen() {
    const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return std::nullopt;
    return BoxSeen{box->windowTitle().toStdString(), box->text().toStdString()};
}

void CloseBox() {
    QApplication::activeModalWidget()->close();
}

}  // namespace tav::test
