// Automation objects of other components, called by name (late binding).
#pragma once

#include <oaidl.h>

#include <initializer_list>
#include <map>

#include "common/value.h"
#include "platform/win32_windows.h"

namespace tav::win32 {

// COM on this thread, for as long as it lives. A host's thread has it already, of whatever kind.
class ComUse {
 public:
    ComUse()
        : ours_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~ComUse() {
        if (ours_) ::CoUninitialize();
    }
    ComUse(const ComUse&) = delete;
    ComUse& operator=(const ComUse&) = delete;

 private:
    bool ours_;
};

// A VARIANT that frees what it holds.
class Variant : public VARIANT {
 public:
    Variant() { ::VariantInit(this); }
    explicit Variant(TextView text);
    explicit Variant(long number) : Variant() {
        vt = VT_I4;
        lVal = number;
    }
    ~Variant() { ::VariantClear(this); }
    Variant(Variant&& other) noexcept : Variant() { std::swap<VARIANT>(*this, other); }
    Variant& operator=(Variant&& other) noexcept {
        std::swap<VARIANT>(*this, other);
        return *this;
    }
};

// What a field of a record set holds: Null, whole number, double, date or text; a truth value is -1 or 0.
// Bytes and objects are Null: no procedure asks for them.
Value ValueOf(const VARIANT& variant);

// A reference to an object. What an object refuses is a Failure with its own description.
class Object {
 public:
    Object() = default;
    // A new object of the class with this programmatic identifier; "ActiveX component can't create object".
    explicit Object(const wchar_t* program_id);
    // The object that the variant holds; none for any other variant.
    explicit Object(const Variant& variant);
    ~Object();
    Object(Object&& other) noexcept;
    Object& operator=(Object&& other) noexcept;

    explicit operator bool() const { return object_ != nullptr; }
    Variant Get(const wchar_t* name, std::initializer_list<const VARIANT*> arguments = {});
    void Put(const wchar_t* name, const VARIANT& value);
    Variant Call(const wchar_t* name, std::initializer_list<const VARIANT*> arguments = {});

 private:
    Variant Invoke(WORD kind, const wchar_t* name, std::initializer_list<const VARIANT*> arguments);
    DISPID NumberOf(const wchar_t* name);

    IDispatch* object_ = nullptr;
    std::map<std::wstring, DISPID> numbers_;  // of the names asked for
};

// Whether objects of that class can be made in this process. Its name alone says little: programs of both
// widths share the names, and each width has components of its own.
bool CanMake(const wchar_t* program_id);

}  // namespace tav::win32
