// The entry points that COM, regsvr32 and installers know.

#include <olectl.h>

#include "class_factory_windows.h"
#include "identity_windows.h"
#include "module_windows.h"
#include "platform/floating_point_windows.h"
#include "registration_windows.h"

namespace {

// No exception gets across the border.
template <class Work>
HRESULT Guarded(Work&& work) noexcept {
    const tav::win32::OwnFloatingPoint own;
    try {
        return work();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID class_id, REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (class_id != tav::kClassId) return CLASS_E_CLASSNOTAVAILABLE;
    return tav::ClassFactory().QueryInterface(id, object);
}

STDAPI DllCanUnloadNow() {
    return tav::ModuleBusy() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
    return Guarded([] { return tav::Register(tav::Whose::Machine); });
}

STDAPI DllUnregisterServer() {
    return Guarded([] { return tav::Unregister(tav::Whose::Machine); });
}

// regsvr32 /n /i:user registers for the present user alone; without a word, or with "machine", for all.
STDAPI DllInstall(BOOL install, LPCWSTR whose) {
    const auto is = [&](const wchar_t* word) {
        return ::CompareStringOrdinal(whose, -1, word, -1, TRUE) == CSTR_EQUAL;
    };
    tav::Whose users = tav::Whose::Machine;
    if (whose != nullptr && is(L"user")) {
        users = tav::Whose::User;
    } else if (whose != nullptr && *whose != L'\0' && !is(L"machine")) {
        return E_INVALIDARG;
    }
    return Guarded([&] { return install ? tav::Register(users) : tav::Unregister(users); });
}
