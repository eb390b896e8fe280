// What the system's accessibility services are told of a form; those of Wine refuse everything, so a double
// stands in for them.
#include <gmock/gmock.h>
#include <oleacc.h>

#include <map>

#include "forms/probe_form.h"
#include "platform/automation_windows.h"

// The system's interfaces have no virtual destructor.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace tav::test {
namespace {

// The class and its one object.
class Services final : public IClassFactory, public IAccPropServices {
 public:
    Services() {
        EXPECT_EQ(::CoRegisterClassObject(CLSID_AccPropServices, static_cast<IClassFactory*>(this),
                                          CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered_),
                  S_OK);
    }
    ~Services() { ::CoRevokeClassObject(registered_); }

    HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
        *object = id == IID_IAccPropServices ? static_cast<void*>(static_cast<IAccPropServices*>(this))
                                             : static_cast<IClassFactory*>(this);
        return S_OK;
    }
    ULONG WINAPI AddRef() override { return 2; }
    ULONG WINAPI Release() override { return 1; }
    HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** object) override {
        return QueryInterface(id, object);
    }
    HRESULT WINAPI LockServer(BOOL) override { return S_OK; }

    HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD child, MSAAPROPID property,
                                  LPCWSTR name) override {
        EXPECT_TRUE(::IsWindow(window) && object == static_cast<DWORD>(OBJID_CLIENT) && child == 0 &&
                    property == PROPID_ACC_NAME);
        names[window] = ToUtf8(win32::FromWide(name));
        return S_OK;
    }
    HRESULT WINAPI ClearHwndProps(HWND window, DWORD object, DWORD child, const MSAAPROPID* properties,
                                  int count) override {
        EXPECT_TRUE(::IsWindow(window) && object == static_cast<DWORD>(OBJID_CLIENT) && child == 0 &&
                    count == 1 && *properties == PROPID_ACC_NAME);
        names.erase(window);
        return S_OK;
    }

    using Bytes = const BYTE*;
    using Properties = const MSAAPROPID*;
    HRESULT WINAPI SetPropValue(Bytes, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetPropServer(Bytes, DWORD, Properties, int, IAccPropServer*, AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearProps(Bytes, DWORD, Properties, int) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHwndProp(HWND, DWORD, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHwndPropServer(HWND, DWORD, DWORD, Properties, int, IAccPropServer*,
                                     AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ComposeHwndIdentityString(HWND, DWORD, DWORD, BYTE**, DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI DecomposeHwndIdentityString(Bytes, DWORD, HWND*, DWORD*, DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI SetHmenuProp(HMENU, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropStr(HMENU, DWORD, MSAAPROPID, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropServer(HMENU, DWORD, Properties, int, IAccPropServer*, AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearHmenuProps(HMENU, DWORD, Properties, int) override { return E_NOTIMPL; }
    HRESULT WINAPI ComposeHmenuIdentityString(HMENU, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI DecomposeHmenuIdentityString(Bytes, DWORD, HMENU*, DWORD*) override { return E_NOTIMPL; }

    std::map<HWND, std::string> names;

 private:
    DWORD registered_ = 0;
};

TEST(Readers, AreToldNamesWhileTheWindowLives) {
    const win32::ComUse com;
    Services services;
    Recorder events;
    OwnedWindow window = CurrentToolkit().Create(kPlan, events);
    std::map<int, std::string> told;
    for (const auto& [control, name] : services.names) told[::GetDlgCtrlID(control) - 1000] = name;
    EXPECT_THAT(told, testing::UnorderedElementsAre(std::pair(kFolder, "Папка <b>&</b>:"),
                                                    std::pair(kBrowse, "<b>Обновить</b>")));
    window.reset();
    EXPECT_TRUE(services.names.empty());
}

}  // namespace
}  // namespace tav::test
