// What the forms are as Qt's widgets.
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "forms/probe_form.h"
#include "support/screen_qt.h"

namespace tav {
namespace {

using namespace test;

class FormsQt : public ProbeForm {
 protected:
    template <class Widget = QWidget>
    static Widget* Find(const char* name) {
        return test::In<Widget>({"Probe", name});
    }
};

TEST_F(FormsQt, ARowIsCopiedAsItsTextSays) {
    window->SelectRow(kRows, 1);
    QTest::keyClick(Find("Rows"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "два");
}

TEST_F(FormsQt, TextsAreNoMarkUp) {
    window->SetText(kAsk, u"<b>&</b>");
    EXPECT_EQ(Find<QLabel>("Ask")->textFormat(), Qt::PlainText);
    EXPECT_EQ(Find<QLabel>("Ask")->text(), "<b>&&</b>");
    window->SetText(kOk, u"&\xDCFF");
    EXPECT_EQ(Find<QPushButton>("Ok")->text(), QString("&&") + QChar(0xDCFF));
    EXPECT_EQ(Find("Browse")->accessibleName(), "<b>Обновить</b>");
    const QString row_tip =
        Find<QAbstractItemView>("Rows")->model()->index(0, 0).data(Qt::ToolTipRole).toString();
    for (const QString& tip : {Find("Browse")->toolTip(), row_tip})
        EXPECT_TRUE(tip.contains("&lt;b&gt;")) << tip.toStdString();
    EXPECT_EQ(Find("All")->toolTip(), "Все");
}

TEST_F(FormsQt, AMessageHasItsIconAndOwner) {
    Soon([&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->icon(), QMessageBox::Information);
        EXPECT_EQ(box->parent(), WindowNamed("Probe"));
        QTest::keyClick(box, Qt::Key_Return);
    });
    CurrentToolkit().ShowMessage({u"import", u"<b>&", MessageIcon::Information});
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
