#include "module_windows.h"

#include <atomic>

#include "forms/win32/shown_forms.h"

// Gives back what the C++ library sets aside while it loads, for exceptions that find no memory.
namespace __gnu_cxx {
void __freeres();
}

namespace tav {
namespace {

std::atomic<long> locks = 0;

// Hosts may load and unload a library as often as they like, without any object.
const struct Unloading {
    ~Unloading() { __gnu_cxx::__freeres(); }
} unloading;

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

}  // namespace tav
