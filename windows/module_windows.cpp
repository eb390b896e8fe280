#include "module_windows.h"

#include <atomic>

#include "platform/shown_forms_windows.h"

namespace tav {
namespace {

std::atomic<long> locks = 0;

}  // namespace

ModuleLock::ModuleLock() {
    LockModule();
}
ModuleLock::~ModuleLock() {
    UnlockModule();
}

void LockModule() {
    ++locks;
}
void UnlockModule() {
    --locks;
}

bool ModuleBusy() {
    return locks > 0 || OpenForms() > 0;
}

void PinModule() {
    HMODULE pinned = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<const wchar_t*>(&PinModule), &pinned);
}

std::wstring ModulePath() {
    return win32::Filled(
        [](wchar_t* buffer, DWORD size) { return ::GetModuleFileNameW(win32::ThisModule(), buffer, size); });
}

std::wstring ModuleFolder() {
    const std::wstring path = ModulePath();
    return path.substr(0, path.find_last_of(L"\\/") + 1);
}

}  // namespace tav
