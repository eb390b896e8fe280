#include "forms/win32/buttons.h"

#include "forms/reader_names.h"
#include "forms/win32/pictures.h"

namespace tav {
namespace {

// What a click presses. The caption is kept as it was set, for the window has it with mnemonics.
class Pressed : public ControlWin {
 public:
    Pressed(const ControlPlan& plan, std::size_t index, FormHost& host, DWORD style)
        : ControlWin(plan, index, host) {
        MakeWindow(L"BUTTON", WS_TABSTOP | style);
    }
    Text GetText() const override { return caption_; }
    void SetText(TextView text) override {
        caption_ = text;
        SetWindowText(WithMnemonic(text, plan().mnemonic));
    }
    void OnCommand(WORD code) override {
        if (code == BN_CLICKED) Raise(Event::Click);
    }

 protected:
    SIZE CaptionSize() const {
        return metrics().TextSize(WithMnemonic(caption_, plan().mnemonic), 0, DT_SINGLELINE);
    }

 private:
    Text caption_;
};

class Button : public Pressed {
 public:
    Button(const ControlPlan& plan, std::size_t index, FormHost& host)
        : Pressed(plan, index, host, BS_PUSHBUTTON) {}
    // Enter presses the button that has the focus.
    bool OnEnter() override {
        Press();
        return true;
    }
    void Press() override {
        if (::IsWindowEnabled(hwnd())) Raise(Event::Click);
    }
    // One whose caption has no words is narrow.
    int MinWidth() const override {
        if (KeepsWidth()) return 6 * metrics().character();
        return std::max(metrics().Across(50), static_cast<int>(CaptionSize().cx) + metrics().Across(12));
    }
    bool KeepsWidth() const override { return !HasWords(plan().caption); }
    int HeightFor(int) const override { return metrics().line() + metrics().Down(6); }
};

class PictureButton : public Button {
 public:
    // Its text is not shown, but read to those who do not see the picture.
    PictureButton(const ControlPlan& plan, std::size_t index, FormHost& host) : Button(plan, index, host) {
        ::SetWindowLongPtrW(hwnd(), GWL_STYLE, ::GetWindowLongPtrW(hwnd(), GWL_STYLE) | BS_ICON);
        PictureButton::SetText(plan.caption);
        Show();
    }
    void SetText(TextView text) override {
        Button::SetText(text);
        SetWindowText(WithMnemonic(plan().tool_tip.empty() ? text : plan().tool_tip, plan().mnemonic));
    }
    void OnMetrics() override { Show(); }
    int MinWidth() const override { return HeightFor(0) + metrics().Across(4); }
    bool KeepsWidth() const override { return true; }

 private:
    void Show() {
        Icon icon(plan().picture, metrics().Scaled(16));
        Send(BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon.get()));
        icon_ = std::move(icon);
    }

    Icon icon_;
};

class CheckBox : public Pressed {
 public:
    CheckBox(const ControlPlan& plan, std::size_t index, FormHost& host)
        : Pressed(plan, index, host, BS_AUTOCHECKBOX) {}
    bool Checked() const override { return Send(BM_GETCHECK) == BST_CHECKED; }
    void Check(bool checked) override { Send(BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED); }
    int MinWidth() const override { return static_cast<int>(CaptionSize().cx) + metrics().Scaled(24); }
    int HeightFor(int) const override { return std::max(metrics().line(), metrics().Scaled(17)); }
};

}  // namespace

MadeControl MakeButton(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<Button>(plan, index, host);
}
MadeControl MakePictureButton(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<PictureButton>(plan, index, host);
}
MadeControl MakeCheckBox(const ControlPlan& plan, std::size_t index, FormHost& host) {
    return std::make_unique<CheckBox>(plan, index, host);
}

}  // namespace tav
