#include "forms/win32/window_size.h"

namespace tav {

RECT WorkArea(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

void Centre(HWND window, HWND owner) {
    RECT own{};
    RECT other{};
    ::GetWindowRect(window, &own);
    ::GetWindowRect(owner, &other);
    const RECT screen = WorkArea(owner);
    const LONG x = (other.left + other.right - (own.right - own.left)) / 2;
    const LONG y = (other.top + other.bottom - (own.bottom - own.top)) / 2;
    ::SetWindowPos(window, nullptr, std::max(screen.left, x), std::max(screen.top, y), 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE WithBorder(HWND window, SIZE inside) {
    RECT client{};
    RECT whole{};
    ::GetClientRect(window, &client);
    ::GetWindowRect(window, &whole);
    return {inside.cx + whole.right - whole.left - client.right,
            inside.cy + whole.bottom - whole.top - client.bottom};
}

void SetInside(HWND window, SIZE inside) {
    const SIZE size = WithBorder(window, inside);
    const RECT screen = WorkArea(window);
    ::SetWindowPos(window, nullptr, 0, 0, std::min(size.cx, screen.right - screen.left),
                   std::min(size.cy, screen.bottom - screen.top), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace tav
