#include "one_thread_windows.h"

#include <mutex>

#include "forms/win32/shown_forms.h"

namespace tav {
namespace {

std::mutex guard;
DWORD owner = 0;     // the last thread that was let in
int operations = 0;  // of it, that run now, one inside another

bool Enter() {
    const std::lock_guard lock(guard);
    const DWORD present = ::GetCurrentThreadId();
    if (owner != 0 && owner != present && (operations > 0 || HasForms(owner))) return false;
    owner = present;
    ++operations;
    return true;
}

}  // namespace

OneThread::OneThread() : entered_(Enter()) {}

OneThread::~OneThread() {
    const std::lock_guard lock(guard);
    if (entered_) --operations;
}

void ShowWrongThread(TextView title) {
    ::MessageBoxW(nullptr,
                  L"Компонентом пользуется другой поток этой программы. Закройте окна компонента и "
                  L"повторите; вызывать его нужно из того потока, где открыты его окна.",
                  win32::Wide(title).c_str(), MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND);
}

}  // namespace tav
