#include "forms/win32/tool_tips.h"

namespace tav {
namespace {

// The shorter form of the structure is understood by the old and the new controls.
TTTOOLINFOW Tool(HWND window) {
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.hwnd = window;
    return tool;
}

}  // namespace

HWND MakeToolTips(HWND form) {
    const HWND tips = ::CreateWindowExW(
        WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, form, nullptr, win32::ThisModule(), nullptr);
    // With a width, however large, a tip has several lines.
    ::SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, ::GetSystemMetrics(SM_CXSCREEN) / 2);
    return tips;
}

void AddToolTip(HWND tips, HWND control, TextView text) {
    std::wstring wide = win32::Wide(text);
    TTTOOLINFOW tool = Tool(::GetParent(control));
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = wide.data();
    ::SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void AddPartTips(HWND tips, HWND control) {
    TTTOOLINFOW tool = Tool(control);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    ::SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void SetTipPart(HWND tips, HWND control, const RECT& part) {
    TTTOOLINFOW tool = Tool(control);
    tool.rect = part;
    ::SendMessageW(tips, TTM_POP, 0, 0);
    ::SendMessageW(tips, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&tool));
}

void TellTips(HWND tips, HWND control, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message < WM_MOUSEFIRST || message > WM_MOUSELAST) return;
    MSG told{};
    told.hwnd = control;
    told.message = message;
    told.wParam = wparam;
    told.lParam = lparam;
    ::SendMessageW(tips, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&told));
}

}  // namespace tav
