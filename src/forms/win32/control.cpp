#include "forms/win32/control.h"

#include <array>

#include "common/concat.h"
#include "platform/border_windows.h"

namespace tav {

void ControlWin::MakeWindow(const wchar_t* window_class, DWORD style, DWORD ex_style) {
    seen_ = true;
    const auto number = static_cast<INT_PTR>(kFirstChild + index_);
    hwnd_ = ::CreateWindowExW(ex_style, window_class, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                              host_.hwnd(), reinterpret_cast<HMENU>(number), win32::ThisModule(), nullptr);
    if (hwnd_ == nullptr) {
        throw Failure(u"Окна показать нельзя: " + win32::ErrorWords(::GetLastError()));
    }
    ::SetPropW(hwnd_, win32::Wide(plan().name).c_str(), hwnd_);
    ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    class_procedure_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(metrics().font()));
}

// No exception may cross the system's code between two of our procedures. Only memory can be short here.
LRESULT CALLBACK ControlWin::Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return win32::AtBorder([&]() -> LRESULT {
        auto& control = *reinterpret_cast<ControlWin*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        const Running running(control.host_);
        try {
            const LRESULT result = control.OnMessage(message, wparam, lparam);
            if (message == WM_NCDESTROY) control.hwnd_ = nullptr;
            return result;
        } catch (...) {
            return 0;
        }
    });
}

LRESULT ControlWin::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_SETFOCUS) host_.Reveal(hwnd_);
    if (message == WM_DESTROY) ::RemovePropW(hwnd_, win32::Wide(plan().name).c_str());
    return ::CallWindowProcW(class_procedure_, hwnd_, message, wparam, lparam);
}

LRESULT ControlWin::Send(UINT message, WPARAM wparam, LPARAM lparam) const {
    return hwnd_ == nullptr ? 0 : ::SendMessageW(hwnd_, message, wparam, lparam);
}

Text ControlWin::WindowText() const {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(hwnd_)), L'\0');
    text.resize(
        static_cast<std::size_t>(::GetWindowTextW(hwnd_, text.data(), static_cast<int>(text.size()) + 1)));
    return win32::FromWide(text);
}

void ControlWin::SetWindowText(TextView text) {
    ::SetWindowTextW(hwnd_, win32::Wide(text).c_str());
}

bool ControlWin::Enabled() const {
    if (!seen_) Refuse();
    return enabled_;
}

void ControlWin::Enable(bool enabled) {
    if (!seen_) Refuse();
    enabled_ = enabled;
}

// A disabled window would keep the focus and swallow every key.
void ControlWin::ShowEnabled() {
    const bool usable = Usable();
    if (hwnd_ == nullptr || usable == (::IsWindowEnabled(hwnd_) != FALSE)) return;
    if (!usable && ::GetFocus() == hwnd_) {
        ::SetFocus(::GetNextDlgTabItem(host_.hwnd(), hwnd_, FALSE));
    }
    ::EnableWindow(hwnd_, usable ? TRUE : FALSE);
}

void ControlWin::OnMetrics() {
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(metrics().font()), TRUE);
}

void ControlWin::Put(const Box& box) {
    if (std::exchange(box_, box) == box) return;
    ::SetWindowPos(hwnd_, nullptr, box.x, box.y, box.width, box.height,
                   SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

Text WithMnemonic(TextView text, char16_t mnemonic) {
    const auto same = [&](char16_t c) {
        wchar_t pair[] = {static_cast<wchar_t>(c), static_cast<wchar_t>(mnemonic)};
        ::CharUpperBuffW(pair, 2);
        return pair[0] == pair[1];
    };
    const auto at = mnemonic == 0 ? text.end() : std::find_if(text.begin(), text.end(), same);
    Text out;
    for (auto c = text.begin(); c != text.end(); ++c) {
        if (c == at || *c == u'&') out += u'&';
        out += *c;
    }
    if (mnemonic != 0 && at == text.end()) out += Concat(u" (&", TextView(&mnemonic, 1), u")");
    return out;
}

}  // namespace tav
