#include "forms/win32/message_loop.h"

#include "platform/win32_windows.h"

namespace tav {
namespace {

// False for the request to quit.
bool Handle(const MSG& message) {
    if (message.message == WM_QUIT) {
        ::PostQuitMessage(static_cast<int>(message.wParam));
        return false;
    }
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
    return true;
}

}  // namespace

void RunLoopUntil(const std::function<bool()>& done) {
    MSG message;
    while (!done() && ::GetMessageW(&message, nullptr, 0, 0) >= 0) {
        if (!Handle(message)) return;
    }
}

void WakeLoop() {
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_NULL, 0, 0);
}

bool HandleWaiting() {
    constexpr ULONGLONG kMilliseconds = 100;
    const ULONGLONG end = ::GetTickCount64() + kMilliseconds;
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (!Handle(message)) return false;
        if (::GetTickCount64() > end) break;
    }
    return true;
}

}  // namespace tav
