// What the doubles of the system's objects have in common: they are counted, answer for one interface besides
// IUnknown, and have no members for late binding until they say so.
#pragma once

#include <oaidl.h>

#include <functional>

namespace tav::test {

// The system's interfaces have no virtual destructor: objects go by Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Begins with one reference: of whoever made it with new, or of the test whose variable it is.
template <class Interface>
class ComDouble : public Interface {
 public:
    explicit ComDouble(REFIID id) : id_(id) {}
    virtual ~ComDouble() = default;
    ComDouble(const ComDouble&) = delete;
    ComDouble& operator=(const ComDouble&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == id_;
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

 private:
    const IID id_;
    ULONG references_ = 1;
};

template <class Interface>
class DispatchDouble : public ComDouble<Interface> {
 public:
    using ComDouble<Interface>::ComDouble;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

// A class of this process for as long as it lives. What `make` gives is handed on with its reference.
class ClassDouble : public ComDouble<IClassFactory> {
 public:
    ClassDouble(REFCLSID id, std::function<IUnknown*()> make)
        : ComDouble(IID_IClassFactory), make_(std::move(make)) {
        ::CoRegisterClassObject(id, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered_);
    }
    ~ClassDouble() override { ::CoRevokeClassObject(registered_); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        IUnknown* const made = make_();
        const HRESULT result = made->QueryInterface(id, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
    const std::function<IUnknown*()> make_;
    DWORD registered_ = 0;
};

#pragma GCC diagnostic pop

}  // namespace tav::test
