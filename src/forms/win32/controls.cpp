#include "forms/win32/controls.h"

#include <array>
#include <cmath>

#include "forms/win32/buttons.h"
#include "forms/win32/combo_box.h"
#include "forms/win32/list_box.h"
#include "forms/win32/pictures.h"
#include "forms/win32/tree_control.h"

namespace tav {
namespace {

class Frame : public ControlWin {
 public:
    // A frame without a title is not seen: it only holds its controls together.
    Frame(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"BUTTON", BS_GROUPBOX | WS_GROUP);
        if (plan.caption.empty()) ::ShowWindow(hwnd(), SW_HIDE);
    }
    Grid* grid() override { return &grid_; }
    Text GetText() const override { return caption_; }
    void SetText(TextView text) override {
        caption_ = text;
        SetWindowText(WithMnemonic(text, plan().mnemonic));
    }
    int MinWidth() const override {
        const int title = static_cast<int>(metrics().TextSize(caption_, 0, DT_NOPREFIX).cx);
        return 2 * Side() + std::max(title, grid_.MinWidth());
    }
    int HeightFor(int width) const override { return Top() + grid_.HeightFor(width - 2 * Side()) + Side(); }
    void Put(const Box& box) override {
        ControlWin::Put(box);
        grid_.Arrange({box.x + Side(), box.y + Top(), box.width - 2 * Side(), box.height - Top() - Side()});
    }

 private:
    int Side() const { return plan().caption.empty() ? 0 : metrics().Across(6); }
    int Top() const { return plan().caption.empty() ? 0 : metrics().line() + metrics().Down(3); }

    Text caption_;
    Grid grid_;
};

class Label : public ControlWin {
 public:
    Label(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"STATIC", SS_LEFT | (plan.mnemonic == 0 ? SS_NOPREFIX : 0));
    }
    Text GetText() const override { return caption_; }
    void SetText(TextView text) override {
        caption_ = text;
        SetWindowText(plan().mnemonic == 0 ? caption_ : WithMnemonic(text, plan().mnemonic));
        const Box& room = box();
        if (room == Box()) return;  // not laid out yet
        if (MinWidth() > room.width || HeightFor(room.width) != room.height) host().Arrange();
    }
    int MinWidth() const override { return static_cast<int>(Size(0).cx) + 1; }
    int BrokenWidth() const override { return 30 * metrics().character(); }
    int HeightFor(int width) const override {
        return std::max(metrics().line(), static_cast<int>(Size(width).cy));
    }

 private:
    SIZE Size(int width) const {
        return metrics().TextSize(caption_, width,
                                  DT_NOPREFIX | DT_EXPANDTABS | (width > 0 ? DT_WORDBREAK : 0));
    }

    Text caption_;
};

class TextBox : public ControlWin {
 public:
    TextBox(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
        Send(EM_SETLIMITTEXT);
    }
    Text GetText() const override { return WindowText(); }
    void SetText(TextView text) override { SetWindowText(text); }
    // Typing over a text with the same text is a change to the window, but not to the form.
    void OnCommand(WORD code) override {
        if (code != EN_CHANGE) return;
        Text text = WindowText();
        if (std::exchange(last_, text) != text) Raise(Event::Change);
    }
    int MinWidth() const override { return metrics().Across(60); }
    int HeightFor(int) const override { return metrics().line() + metrics().Down(4); }

 private:
    Text last_;
};

class Memo : public ControlWin {
 public:
    Memo(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"EDIT", WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL,
                   WS_EX_CLIENTEDGE);
        Send(EM_SETLIMITTEXT);
    }
    Text GetText() const override { return text_; }
    void SetText(TextView text) override {
        text_ = text;
        SetWindowText(ReplaceAll(ReplaceAll(text, u"\r\n", u"\n"), u"\n", u"\r\n"));
    }
    // It edits nothing, so Tab, Enter and Esc are the form's, and its text is not selected on the way.
    LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override {
        if (message == WM_GETDLGCODE) return DLGC_WANTARROWS;
        const LRESULT result = ControlWin::OnMessage(message, wparam, lparam);
        if (message == WM_LBUTTONUP && NothingSelected()) Raise(Event::Click);
        return result;
    }
    int MinWidth() const override { return metrics().Across(60); }
    int HeightFor(int) const override { return 4 * metrics().line() + metrics().Down(4); }

 private:
    bool NothingSelected() const {
        DWORD begin = 0;
        DWORD end = 0;
        Send(EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
        return begin == end;
    }

    Text text_;
};

class ProgressBar : public ControlWin {
 public:
    ProgressBar(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(PROGRESS_CLASSW, 0);
        Send(PBM_SETRANGE32, 0, kSteps);
    }
    void SetBar(double part) override {
        Send(PBM_SETPOS, static_cast<WPARAM>(kSteps * (part > 0 ? std::min(part, 1.0) : 0.0)));
    }
    int MinWidth() const override { return metrics().Across(60); }
    int HeightFor(int) const override { return metrics().Down(10); }

 private:
    static constexpr int kSteps = 1000;
};

class PictureBox : public ControlWin {
 public:
    PictureBox(const ControlPlan& plan, std::size_t index, FormHost& host) : ControlWin(plan, index, host) {
        MakeWindow(L"STATIC", SS_ICON | SS_NOTIFY | SS_CENTERIMAGE);
        SetWindowText(plan.tool_tip);  // what is read to those who do not see it
        Show();
    }
    void OnMetrics() override { Show(); }
    int MinWidth() const override { return Size(); }
    bool KeepsWidth() const override { return true; }
    int HeightFor(int) const override { return Size(); }

 private:
    int Size() const { return metrics().Scaled(32); }
    void Show() {
        Icon icon(plan().picture, Size());
        Send(STM_SETICON, reinterpret_cast<WPARAM>(icon.get()));
        icon_ = std::move(icon);
    }

    Icon icon_;
};

// Ticks through the form's window.
class Timer : public ControlWin {
 public:
    using ControlWin::ControlWin;
    void SetInterval(int milliseconds) override {
        running_ = milliseconds > 0;
        if (running_) {
            ::SetTimer(host().hwnd(), index(), static_cast<UINT>(milliseconds), nullptr);
        } else {
            ::KillTimer(host().hwnd(), index());
        }
    }
    // A tick may be on its way when the timer is stopped.
    void OnTimer() override {
        if (running_) Raise(Event::Timer);
    }

 private:
    bool running_ = false;
};

template <class Control>
MadeControl Make(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<Control>(plan, index, host);
}

constexpr std::array<std::pair<ControlKind, MadeControl (*)(const ControlPlan&, std::size_t, FormHost&)>, 13>
    kMakers = {{
        {ControlKind::Frame, Make<Frame>},
        {ControlKind::Label, Make<Label>},
        {ControlKind::TextBox, Make<TextBox>},
        {ControlKind::Memo, Make<Memo>},
        {ControlKind::Button, MakeButton},
        {ControlKind::PictureButton, MakePictureButton},
        {ControlKind::CheckBox, MakeCheckBox},
        {ControlKind::ListBox, MakeListBox},
        {ControlKind::ComboBox, MakeComboBox},
        {ControlKind::TreeView, MakeTreeView},
        {ControlKind::ProgressBar, Make<ProgressBar>},
        {ControlKind::Picture, Make<PictureBox>},
        {ControlKind::Timer, Make<Timer>},
    }};

}  // namespace

MadeControl MakeControl(const ControlPlan& plan, std::size_t index, FormHost& host) {
    const auto* maker =
        std::find_if(kMakers.begin(), kMakers.end(), [&](const auto& m) { return m.first == plan.kind; });
    MadeControl control = maker->second(plan, index, host);
    if (control->hwnd() != nullptr && (!plan.caption.empty() || plan.mnemonic != 0)) {
        control->SetText(plan.caption);
    }
    return control;
}

}  // namespace tav
