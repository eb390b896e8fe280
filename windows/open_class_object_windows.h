// The class OpenClass as other programs see it: the methods of its dual interface by their places, IDispatch
// by their names, and IProvideClassInfo.
//
// Every operation succeeds whatever happens in it; the failure is shown by the operation itself
// (host/open_class.h). The object is for one thread, that of the host's user interface; an operation on
// another is refused while that one has windows or works.
#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include "host/open_class.h"
#include "identity_windows.h"
#include "module_windows.h"

namespace tav {

// The default interface, in the order of its slots. A null text is an empty one.
struct OpenClassInterface : public IDispatch {
    virtual HRESULT STDMETHODCALLTYPE start(BSTR inn, BSTR kpp, DATE vdm) = 0;
    virtual HRESULT STDMETHODCALLTYPE view_v_id(SHORT id) = 0;
    virtual HRESULT STDMETHODCALLTYPE import(BSTR inn, BSTR kpp) = 0;
    virtual HRESULT STDMETHODCALLTYPE view_v(BSTR inn, BSTR kpp) = 0;
    virtual HRESULT STDMETHODCALLTYPE view_a(BSTR inn, BSTR kpp) = 0;

 protected:
    ~OpenClassInterface() = default;
};

class OpenClassObject final : public OpenClassInterface, public IProvideClassInfo {
 public:
    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    // IDispatch (dispatch_windows.h)
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                     DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                     UINT* wrong_argument) override;

    // _OpenClass
    HRESULT STDMETHODCALLTYPE start(BSTR inn, BSTR kpp, DATE vdm) override;
    HRESULT STDMETHODCALLTYPE view_v_id(SHORT id) override;
    HRESULT STDMETHODCALLTYPE import(BSTR inn, BSTR kpp) override;
    HRESULT STDMETHODCALLTYPE view_v(BSTR inn, BSTR kpp) override;
    HRESULT STDMETHODCALLTYPE view_a(BSTR inn, BSTR kpp) override;

    // IProvideClassInfo
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;

 private:
    ~OpenClassObject() = default;

    const ModuleLock lock_;
    LONG references_ = 0;
    OpenClass component_;
};

}  // namespace tav
