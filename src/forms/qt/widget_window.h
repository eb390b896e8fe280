// A form's window in Qt.
#pragma once

#include <QAbstractButton>
#include <QEventLoop>
#include <QScrollArea>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "forms/forms.h"
#include "forms/qt/widget_control.h"

namespace tav {

class FormWindowQt final : public QWidget, public WindowOfControls {
 public:
    FormWindowQt(const FormPlan& plan, FormEvents& events);
    ~FormWindowQt() override;

    void Discard() override;
    void Show(FormWindow* owner) override;
    void ShowModal(FormWindow* owner) override;
    void Hide() override;
    void SetCaption(TextView caption) override;
    FormSize Size() const override;
    void Resize(const FormSize& size) override;

 protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

 private:
    ControlQt& At(std::size_t control) const override { return *controls_.at(control); }
    void MakeControls(const FormPlan& plan);
    QSize LargestInside() const;
    void FitContents();
    QAbstractButton* FindButton(TextView name) const;
    void Appear();
    void SetOwner(FormWindow* owner);
    void Tell(const std::function<void(FormEvents&)>& what);

    FormEvents* events_;       // null when the window has been discarded
    QScrollArea* const area_;  // scrolls on a screen that is smaller than the contents
    QWidget* const contents_;
    std::vector<MadeControl> controls_;
    QAbstractButton* default_ = nullptr;
    QAbstractButton* cancel_ = nullptr;
    QAbstractButton* refresh_ = nullptr;
    QWidget* first_ = nullptr;
    QEventLoop* modal_loop_ = nullptr;  // of the ShowModal that waits
    int handlers_ = 0;                  // that run now
};

// The event loop, until no form's window is shown.
void RunUntilNoFormIsShown();

// The window of the application that is in front, when it is a form's; else null.
FormWindowQt* ActiveForm();

}  // namespace tav
