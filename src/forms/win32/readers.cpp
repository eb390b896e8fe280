#include <initguid.h>
// The identifiers are defined here.
#include <oleacc.h>

#include "forms/win32/readers.h"
#include "platform/automation_windows.h"

namespace tav {
namespace {

constexpr auto kObject = static_cast<DWORD>(OBJID_CLIENT);

template <class Action>
void WithServices(Action action) {
    const win32::ComUse com;
    void* found = nullptr;
    if (FAILED(::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                                  &found)))
        return;
    auto* services = static_cast<IAccPropServices*>(found);
    action(*services);
    services->Release();
}

}  // namespace

void TellReaders(const ReaderNames& names) {
    WithServices([&](IAccPropServices& services) {
        for (const auto& [window, name] : names) {
            services.SetHwndPropStr(window, kObject, CHILDID_SELF, PROPID_ACC_NAME,
                                    win32::Wide(name).c_str());
        }
    });
}

void ForgetReaders(const ReaderNames& names) {
    WithServices([&](IAccPropServices& services) {
        for (const auto& [window, name] : names) {
            services.ClearHwndProps(window, kObject, CHILDID_SELF, &PROPID_ACC_NAME, 1);
        }
    });
}

}  // namespace tav
