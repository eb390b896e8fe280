// A form's window in Qt.
#pragma once

#include <QAbstractButton>
#include <QEventLoop>
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

 protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    ControlQt& At(std::size_t control) const override { return *controls_.at(control); }
    void MakeControls(const FormPlan& plan);
    QAbstractButton* FindButton(TextView name) const;
    void Appear();
    void SetOwner(FormWindow* owner);
    void Tell(const std::function<void(FormEvents&)>& what);

    FormEvents* events_;  // null when the window has been discarded
    std::vector<MadeControl> controls_;
    QAbstractButton* default_ = nullptr;
    QAbstractButton* cancel_ = nullptr;
    QEventLoop* modal_loop_ = nullptr;  // of the ShowModal that waits
    int handlers_ = 0;                  // that run now
};

// The event loop, until no form's window is shown.
void RunUntilNoFormIsShown();

// The window of the application that is in front, when it is a form's; else null.
FormWindowQt* ActiveForm();

}  // namespace tav
