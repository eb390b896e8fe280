// The forms module: its entry and its toolkit.
#include "forms/forms_module.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QThread>
#include <array>
#include <utility>

#include "forms/qt/application.h"
#include "forms/qt/qt_text.h"
#include "forms/qt/widget_window.h"

namespace tav {
namespace {

// A dialog of Qt's while it is shown. It may vanish with its owner before it is answered.
template <class Dialog>
class ScopedDialog {
 public:
    explicit ScopedDialog(QWidget* owner) : dialog_(new Dialog(owner)) {
        dialog_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    ~ScopedDialog() { delete dialog_.data(); }
    ScopedDialog(const ScopedDialog&) = delete;
    ScopedDialog& operator=(const ScopedDialog&) = delete;

    Dialog* operator->() { return dialog_.data(); }
    bool Accepted() { return dialog_->exec() == QDialog::Accepted && !dialog_.isNull(); }

 private:
    QPointer<Dialog> dialog_;
};

class ToolkitQt : public Toolkit {
 public:
    OwnedWindow Create(const FormPlan& plan, FormEvents& events) override {
        return OwnedWindow(new FormWindowQt(plan, events));
    }

    void ShowMessage(const Message& message) override {
        ScopedDialog<QMessageBox> box(ActiveForm());
        box->setIcon(message.icon == MessageIcon::Critical ? QMessageBox::Critical
                                                           : QMessageBox::Information);
        box->setWindowTitle(ToQt(message.title));
        box->setTextFormat(Qt::PlainText);
        box->setText(ToQt(message.text));
        box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
        box.Accepted();
    }

    Text BrowseFolder(TextView title, TextView start, FormWindow* owner) override {
        static constexpr std::array<std::pair<QFileDialog::DialogLabel, const char16_t*>, 5> kLabels = {{
            {QFileDialog::LookIn, u"Место:"},
            {QFileDialog::FileName, u"Папка:"},
            {QFileDialog::FileType, u"Тип:"},
            {QFileDialog::Accept, u"Выбрать"},
            {QFileDialog::Reject, u"Отмена"},
        }};
        ScopedDialog<QFileDialog> dialog(static_cast<FormWindowQt*>(owner));
        dialog->setWindowTitle(ToQt(title));
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        for (const auto& [label, text] : kLabels) dialog->setLabelText(label, ToQt(text));
        if (!start.empty()) dialog->setDirectory(ToQt(start));
        return dialog.Accepted() ? FromQt(dialog->selectedFiles().value(0)) : Text();
    }

    // Outside a loop Qt leaves objects that are to be deleted for
    // the next one, which a host without a loop never starts.
    bool ProcessEvents() override {
        QCoreApplication::processEvents();
        if (QThread::currentThread()->loopLevel() == 0) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        return true;
    }
    void RunUntilClosed() override { RunUntilNoFormIsShown(); }
};

}  // namespace
}  // namespace tav

extern "C" __attribute__((visibility("default"))) tav::Toolkit* tav_make_toolkit(tav::Text& why) {
    static tav::ToolkitQt& toolkit = *new tav::ToolkitQt;
    return tav::EnsureApplication(why) ? &toolkit : nullptr;
}
