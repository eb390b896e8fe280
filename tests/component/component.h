// The library as a host gets it without registration: loaded by its path, its class asked for objects.
#pragma once

#include <gtest/gtest.h>
#include <oaidl.h>
#include <windows.h>

#include <memory>

#include "identity_windows.h"
#include "platform/environment.h"
#include "platform/win32_windows.h"

namespace tav::test {

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Com = std::unique_ptr<Interface, ReleaseInterface>;

inline std::wstring ComponentPath() {
    return win32::Wide(ComponentFolder()) + L"TAV_OperationImport.dll";
}

// Loaded until the end of the program, like every library that made an object.
class Library {
 public:
    Library() : module_(::LoadLibraryW(ComponentPath().c_str())) {
        EXPECT_NE(module_, nullptr) << ::GetLastError();
    }

    template <class Function>
    Function* Entry(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module_, name)));
    }

    template <class Interface>
    HRESULT GetClassObject(const GUID& class_id, const GUID& id, Com<Interface>& object) const {
        void* found = nullptr;
        const HRESULT result = Entry<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject")(
            class_id, id, &found);
        object.reset(static_cast<Interface*>(found));
        return result;
    }
    template <class Interface>
    Com<Interface> Create(const GUID& id) const {
        Com<IClassFactory> factory;
        EXPECT_EQ(GetClassObject(kClassId, IID_IClassFactory, factory), S_OK);
        void* object = nullptr;
        EXPECT_EQ(factory->CreateInstance(nullptr, id, &object), S_OK);
        return Com<Interface>(static_cast<Interface*>(object));
    }
    HRESULT CanUnloadNow() const { return Entry<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow")(); }

 private:
    HMODULE module_;
};

template <class Interface>
Com<Interface> Query(IUnknown& object, const GUID& id) {
    void* found = nullptr;
    object.QueryInterface(id, &found);
    return Com<Interface>(static_cast<Interface*>(found));
}

// A text that frees itself.
class Bstr {
 public:
    explicit Bstr(TextView text = {})
        : text_(::SysAllocStringLen(win32::Wide(text).c_str(), static_cast<UINT>(text.size()))) {}
    ~Bstr() { ::SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR get() const { return text_; }
    // For a call that gives a text back.
    BSTR* out() {
        ::SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }
    std::string Utf8() const { return ToUtf8(win32::FromWide({text_, ::SysStringLen(text_)})); }

 private:
    BSTR text_;
};

}  // namespace tav::test
