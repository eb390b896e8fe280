// One control of a form in Win32: a child window of the form's window, and what can be asked of its kind.
//
// The windows end with the form's window; the controls stay a little longer (form_window.h), and what
// they then ask of their windows comes to nothing. Each window has a property with the name of its control,
// by which programs that drive windows find it (GetPropW).
#pragma once

#include <memory>
#include <vector>

#include "common/on_left.h"
#include "forms/form_control.h"
#include "forms/form_grid.h"
#include "forms/win32/metrics.h"

namespace tav {

// What a control needs of its form.
class FormHost {
 public:
    virtual HWND hwnd() const = 0;
    virtual HWND tool_tips() const = 0;
    virtual const Metrics& metrics() const = 0;
    virtual void Raise(std::size_t control, Event event) = 0;
    // A control needs more or less room than it has.
    virtual void Arrange() = 0;
    // A control has got the keyboard.
    virtual void Reveal(HWND control) = 0;

 protected:
    friend class Running;
    virtual void Enter() = 0;
    virtual void Leave() = 0;
    virtual ~FormHost() = default;
};

// While one of the form's procedures runs, its windows and controls stay.
class Running {
 public:
    explicit Running(FormHost& host) : host_(host) { host_.Enter(); }
    ~Running() { host_.Leave(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

 private:
    FormHost& host_;
    const OnLeft left_{[this] { host_.Leave(); }};
};

class ControlWin : public FormControl, public GridItem {
 public:
    ControlWin(const ControlPlan& plan, std::size_t index, FormHost& host)
        : FormControl(plan), index_(index), host_(host) {}

    // Null for what is not seen.
    HWND hwnd() const { return hwnd_; }
    // The grid in a frame.
    virtual Grid* grid() { return nullptr; }

    bool Enabled() const override;
    void Enable(bool enabled) override;

    // A frame's controls take no input when the frame is disabled.
    void SetFrame(const ControlWin* frame) { frame_ = frame; }
    void ShowEnabled();

    // What the form's window hears of the control: the code of WM_COMMAND, a WM_NOTIFY, its timer.
    virtual void OnCommand(WORD) {}
    virtual LRESULT OnNotify(NMHDR&) { return 0; }
    virtual void OnTimer() {}
    // Whether the control, which has the focus, has a use for Enter.
    virtual bool OnEnter() { return false; }
    // As by a click of the user, if it is a button.
    virtual void Press() {}
    // The font or the system's colours have changed.
    virtual void OnMetrics();
    // What comes to the control's own window.
    virtual LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam);

    int MinWidth() const override { return 0; }
    int HeightFor(int) const override { return 0; }
    void Put(const Box& box) override;

 protected:
    // Once, by the constructor of the kind.
    void MakeWindow(const wchar_t* window_class, DWORD style, DWORD ex_style = 0);
    LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const;
    Text WindowText() const;
    void SetWindowText(TextView text);
    void Raise(Event event) { host_.Raise(index_, event); }
    const Metrics& metrics() const { return host_.metrics(); }
    FormHost& host() const { return host_; }
    std::size_t index() const { return index_; }
    const Box& box() const { return box_; }

 private:
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
    bool Usable() const { return enabled_ && (frame_ == nullptr || frame_->Usable()); }

    const std::size_t index_;
    FormHost& host_;
    const ControlWin* frame_ = nullptr;
    HWND hwnd_ = nullptr;
    WNDPROC class_procedure_ = nullptr;
    bool seen_ = false;
    bool enabled_ = true;
    Box box_;
};

using MadeControl = std::unique_ptr<ControlWin>;

// The text as a window takes it that knows mnemonics. A letter that the text lacks is added after it.
Text WithMnemonic(TextView text, char16_t mnemonic);

// Numbers of child windows, by which messages name them.
constexpr int kFirstChild = 1000;

}  // namespace tav
