#include "forms/win32/scroll_bars.h"

namespace tav {
namespace {

SCROLLINFO InfoOf(HWND window, int bar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    ::GetScrollInfo(window, bar, &info);
    return info;
}

}  // namespace

void ScrollBars::Fit(HWND window, int bar, int contents, int room, LONG& at) {
    at = std::clamp<LONG>(at, 0, std::max(0, contents - room));
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = contents - 1;
    info.nPage = static_cast<UINT>(std::max(0, room));
    info.nPos = static_cast<int>(at);
    ::SetScrollInfo(window, bar, &info, TRUE);
}

// The one bar takes room that the other then lacks.
void ScrollBars::Fit(HWND window, SIZE contents) {
    for (int times = 0; times < 2; ++times) {
        RECT client{};
        ::GetClientRect(window, &client);
        Fit(window, SB_VERT, static_cast<int>(contents.cy), static_cast<int>(client.bottom), at_.y);
        ::GetClientRect(window, &client);
        Fit(window, SB_HORZ, static_cast<int>(contents.cx), static_cast<int>(client.right), at_.x);
    }
}

bool ScrollBars::MoveTo(HWND window, int bar, int position) {
    const SCROLLINFO info = InfoOf(window, bar);
    LONG& at = bar == SB_VERT ? at_.y : at_.x;
    const int last = std::max(0, info.nMax + 1 - static_cast<int>(info.nPage));
    const LONG before = std::exchange(at, std::clamp(position, 0, last));
    return before != at;
}

bool ScrollBars::OnMessage(HWND window, UINT message, WPARAM wparam, int line) {
    if (message == WM_MOUSEWHEEL) {
        constexpr int kLines = 3;
        const int turned = static_cast<short>(HIWORD(wparam));
        return MoveTo(window, SB_VERT, static_cast<int>(at_.y) - turned * kLines * line / WHEEL_DELTA);
    }
    const int bar = message == WM_VSCROLL ? SB_VERT : SB_HORZ;
    const SCROLLINFO info = InfoOf(window, bar);
    const int page = static_cast<int>(info.nPage);
    switch (LOWORD(wparam)) {
        case SB_LINEUP:
            return MoveTo(window, bar, info.nPos - line);
        case SB_LINEDOWN:
            return MoveTo(window, bar, info.nPos + line);
        case SB_PAGEUP:
            return MoveTo(window, bar, info.nPos - page);
        case SB_PAGEDOWN:
            return MoveTo(window, bar, info.nPos + page);
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            return MoveTo(window, bar, info.nTrackPos);
        default:
            return false;
    }
}

bool ScrollBars::Reveal(HWND window, const RECT& box) {
    RECT client{};
    ::GetClientRect(window, &client);
    const auto needed = [](LONG begin, LONG end, LONG room) {
        if (begin < 0) return begin;
        return end > room ? std::min(begin, end - room) : 0L;
    };
    const bool down =
        MoveTo(window, SB_VERT, static_cast<int>(at_.y + needed(box.top, box.bottom, client.bottom)));
    const bool across =
        MoveTo(window, SB_HORZ, static_cast<int>(at_.x + needed(box.left, box.right, client.right)));
    return down || across;
}

}  // namespace tav
