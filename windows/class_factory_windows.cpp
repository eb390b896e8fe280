#include "class_factory_windows.h"

#include <new>

#include "module_windows.h"
#include "open_class_object_windows.h"
#include "platform/floating_point_windows.h"

namespace tav {
namespace {

class Factory final : public IClassFactory {
 public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (id != IID_IUnknown && id != IID_IClassFactory) return E_NOINTERFACE;
        AddRef();
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        LockModule();
        return 2;  // of an object that is never deleted the count says nothing
    }
    ULONG STDMETHODCALLTYPE Release() override {
        UnlockModule();
        return 1;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        const win32::OwnFloatingPoint own;
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        auto* created = new (std::nothrow) OpenClassObject;
        if (created == nullptr) return E_OUTOFMEMORY;
        PinModule();
        created->AddRef();
        const HRESULT result = created->QueryInterface(id, object);
        created->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock ? LockModule() : UnlockModule();
        return S_OK;
    }
};

}  // namespace

IClassFactory& ClassFactory() {
    static Factory factory;
    return factory;
}

}  // namespace tav
