// A form's window in Qt.
#pragma once

#include <QAbstractButton>
#include <QEventLoop>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "platform/control_qt.h"
#include "platform/forms.h"

namespace tav {

class FormWindowQt final : public QWidget, public FormWindow {
 public:
    FormWindowQt(const FormPlan& plan, FormEvents& events);
    ~FormWindowQt() override;

    void Discard() override;
    void Show() override;
    void ShowModal(FormWindow* owner) override;
    void Hide() override;

    Text GetText(std::size_t control) const override { return At(control).GetText(); }
    void SetText(std::size_t control, TextView text) override { At(control).SetText(text); }
    bool Enabled(std::size_t control) const override { return At(control).Enabled(); }
    void Enable(std::size_t control, bool enabled) override { At(control).Enable(enabled); }
    bool Checked(std::size_t control) const override { return At(control).Checked(); }
    void Check(std::size_t control, bool checked) override { At(control).Check(checked); }
    void SetRows(std::size_t control, std::vector<ListRow> rows) override {
        At(control).SetRows(std::move(rows));
    }
    int SelectedRow(std::size_t control) const override { return At(control).SelectedRow(); }
    void SelectRow(std::size_t control, int row) override { At(control).SelectRow(row); }
    void SetNodes(std::size_t control, std::vector<TreeNode> nodes) override {
        At(control).SetNodes(std::move(nodes));
    }
    Text SelectedNode(std::size_t control) const override { return At(control).SelectedNode(); }
    void SelectNode(std::size_t control, TextView key) override { At(control).SelectNode(key); }
    void SetBar(std::size_t control, double part) override { At(control).SetBar(part); }
    void SetInterval(std::size_t control, int milliseconds) override {
        At(control).SetInterval(milliseconds);
    }

 protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    ControlQt& At(std::size_t control) const { return *controls_.at(control); }
    void MakeControls(const FormPlan& plan);
    QAbstractButton* FindButton(TextView name) const;
    void Appear();
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
