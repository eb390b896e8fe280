// A form's window in Win32.
//
// Keys reach it in the host's message loop, which knows nothing of it: while a form is shown, a hook on the
// messages that the thread takes gives those of our windows to the dialog manager first (IsDialogMessage),
// which has the customs of Windows for Tab, arrows and mnemonics. The windows would have to imitate those if
// each control kept its keys to itself.
#pragma once

#include <atomic>
#include <vector>

#include "forms/win32/control.h"
#include "forms/win32/readers.h"
#include "forms/win32/scroll_bars.h"

namespace tav {

class FormWindowWin final : public WindowOfControls, public FormHost {
 public:
    FormWindowWin(const FormPlan& plan, FormEvents& events);
    // Makes the window and its controls, not shown yet. Without them the object is only to be discarded.
    void Make();
    FormWindowWin(const FormWindowWin&) = delete;
    FormWindowWin& operator=(const FormWindowWin&) = delete;

    void Discard() override;
    bool Exists() const override;
    void Show(FormWindow* owner) override;
    void ShowModal(FormWindow* owner) override;
    void Hide() override;
    void SetCaption(TextView caption) override;
    FormSize Size() const override;
    void Resize(const FormSize& size) override;

    void Enable(std::size_t control, bool enabled) override;

    HWND hwnd() const override { return hwnd_; }
    HWND tool_tips() const override { return tool_tips_; }
    const Metrics& metrics() const override { return metrics_; }
    void Raise(std::size_t control, Event event) override;
    void Arrange() override;
    void Reveal(HWND control) override;

    // Lets go of a window whose thread ended without telling.
    void ForgetIfLost();
    // A key of this window or of a control in it. Whether it has been used up.
    bool TakeKey(MSG& message);

 private:
    ~FormWindowWin() override;
    void Enter() override { ++procedures_; }
    void Leave() override;
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam);
    ControlWin& At(std::size_t control) const override { return *controls_.at(control); }
    // Null when the window is none of the controls'.
    ControlWin* ControlOf(HWND window) const;
    ControlWin* ButtonNamed(TextView name) const;
    void MakeControls();
    void TakeDrop(HDROP drop);
    bool TakeButtonKey(const MSG& message);
    int Margin() const { return metrics_.Across(5); }
    // The least size of the inside.
    SIZE SmallestInside(int width) const;
    void MakeLargeEnough();
    void ShowMetrics();
    void DisableOthers();
    void TakeFocus();
    void Appear();
    void Gone();

    const FormPlan& plan_;
    FormEvents* events_;                // null when the window has been discarded
    std::atomic<HWND> hwnd_ = nullptr;  // other threads ask whether it exists
    HWND tool_tips_ = nullptr;
    Metrics metrics_;
    std::vector<MadeControl> controls_;
    ReaderNames reader_names_;
    std::vector<Grid*> grids_;
    Grid grid_;
    HWND focus_ = nullptr;        // where the keyboard was when another window was activated
    bool* modal_done_ = nullptr;  // of the ShowModal that waits
    std::vector<HWND> disabled_;  // by it
    ScrollBars scroll_;
    bool arranging_ = false;
    int procedures_ = 0;  // of the window and its controls, that run now
};

// Null for no form.
inline HWND WindowOf(FormWindow* form) {
    return form == nullptr ? nullptr : static_cast<FormWindowWin*>(form)->hwnd();
}

}  // namespace tav
