// What the system's accessibility services are told of a form; those of Wine refuse everything, so a double
// stands in for them.
#include <gmock/gmock.h>
#include <oleacc.h>

#include <map>

#include "forms/probe_form.h"
#include "platform/automation_windows.h"
#include "support/com_double_windows.h"

namespace tav::test {
namespace {

class Services final : public ComDouble<IAccPropServices> {
 public:
    Services() : ComDouble(IID_IAccPropServices) {}

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
};

TEST(Readers, AreToldNamesWhileTheWindowLives) {
    const win32::ComUse com;
    Services services;
    const ClassDouble registered(CLSID_AccPropServices, [&] {
        services.AddRef();
        return &services;
    });
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
