#include <atomic>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/win32_windows.h"

namespace tav {
namespace {

std::atomic<bool> interrupted = false;

// On a thread of its own.
BOOL WINAPI OnInterrupt(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    return interrupted.exchange(true) ? FALSE : TRUE;
}

}  // namespace

Text ComponentFolder() {
    return FolderOf(win32::FromWide(win32::ModulePath()));
}

Text TempVariable() {
    return win32::Variable(L"TEMP");
}

Text HomeFolder() {
    return win32::Variable(L"USERPROFILE");
}

Text ReportFolder() {
    if (Text folder = TempVariable(); !folder.empty()) return folder;
    return win32::FromWide(
        win32::Filled([](wchar_t* buffer, DWORD size) { return ::GetTempPathW(size, buffer); }));
}

LocalTime SystemClock() {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {{now.wYear, now.wMonth, now.wDay}, {now.wHour, now.wMinute, now.wSecond}};
}

InterruptWatch::InterruptWatch() {
    interrupted = false;
    ::SetConsoleCtrlHandler(OnInterrupt, TRUE);
}

InterruptWatch::~InterruptWatch() {
    ::SetConsoleCtrlHandler(OnInterrupt, FALSE);
}

bool InterruptWatch::Interrupted() {
    return interrupted;
}

}  // namespace tav
