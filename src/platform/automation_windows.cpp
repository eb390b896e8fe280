#include "platform/automation_windows.h"

#include <vector>

#include "common/concat.h"

namespace tav::win32 {
namespace {

Text TakeText(BSTR& text) {
    Text taken = text == nullptr ? Text() : FromWide({text, ::SysStringLen(text)});
    ::SysFreeString(text);
    text = nullptr;
    return taken;
}

[[noreturn]] void RefuseCall(HRESULT result, EXCEPINFO& exception, const wchar_t* name) {
    if (result == DISP_E_EXCEPTION) {
        if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
        TakeText(exception.bstrSource);
        TakeText(exception.bstrHelpFile);
        if (Text description = TakeText(exception.bstrDescription); !description.empty()) {
            throw Failure(description);
        }
        if (FAILED(exception.scode)) result = exception.scode;
    }
    throw Failure(Concat(ErrorWords(static_cast<DWORD>(result)), u" (", FromWide(name), u")"));
}

}  // namespace

Variant::Variant(TextView text) : Variant() {
    bstrVal = ::SysAllocStringLen(Wide(text).c_str(), static_cast<UINT>(text.size()));
    if (bstrVal == nullptr) throw Failure(RunTimeError::OutOfMemory);
    vt = VT_BSTR;
}

Value ValueOf(const VARIANT& variant) {
    VARIANT source = variant;  // of the system's header, which asks for one to change and leaves it as it is
    switch (variant.vt) {
        case VT_EMPTY:
        case VT_NULL:
            return Null{};
        case VT_DATE:
            return Date{variant.date};
        case VT_BSTR:
            return FromWide({variant.bstrVal, ::SysStringLen(variant.bstrVal)});
        case VT_BOOL:
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_UI4:
        case VT_I8:
        case VT_INT:
        case VT_UINT: {
            Variant number;
            if (FAILED(::VariantChangeType(&number, &source, 0, VT_I8))) break;
            return std::int64_t{number.llVal};
        }
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_UI8:
        case VT_DECIMAL: {
            Variant number;
            if (FAILED(::VariantChangeType(&number, &source, 0, VT_R8))) break;
            return number.dblVal;
        }
        default:  // bytes, objects, what a host's table has besides
            return Null{};
    }
    throw Failure(RunTimeError::TypeMismatch);
}

Object::Object(const wchar_t* program_id) {
    CLSID id{};
    HRESULT result = ::CLSIDFromProgID(program_id, &id);
    if (SUCCEEDED(result)) {
        result = ::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                    reinterpret_cast<void**>(&object_));
    }
    if (FAILED(result)) {
        throw Failure(Concat(u"ActiveX component can't create object: ", FromWide(program_id), u": ",
                             ErrorWords(static_cast<DWORD>(result))));
    }
}

Object::Object(const Variant& variant) {
    if (variant.vt != VT_DISPATCH || variant.pdispVal == nullptr) return;
    object_ = variant.pdispVal;
    object_->AddRef();
}

Object::~Object() {
    if (object_ != nullptr) object_->Release();
}

Object::Object(Object&& other) noexcept
    : object_(std::exchange(other.object_, nullptr)), numbers_(std::move(other.numbers_)) {}

Object& Object::operator=(Object&& other) noexcept {
    std::swap(object_, other.object_);
    std::swap(numbers_, other.numbers_);
    return *this;
}

Variant Object::Get(const wchar_t* name, std::initializer_list<const VARIANT*> arguments) {
    return Invoke(DISPATCH_PROPERTYGET | DISPATCH_METHOD, name, arguments);
}

void Object::Put(const wchar_t* name, const VARIANT& value) {
    Invoke(DISPATCH_PROPERTYPUT, name, {&value});
}

Variant Object::Call(const wchar_t* name, std::initializer_list<const VARIANT*> arguments) {
    return Invoke(DISPATCH_METHOD, name, arguments);
}

DISPID Object::NumberOf(const wchar_t* name) {
    const auto known = numbers_.find(name);
    if (known != numbers_.end()) return known->second;
    std::wstring writable = name;
    LPOLESTR names = writable.data();
    DISPID number = DISPID_UNKNOWN;
    const HRESULT result = object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &number);
    if (FAILED(result)) {
        EXCEPINFO none{};
        RefuseCall(result, none, name);
    }
    return numbers_[name] = number;
}

// The system expects the arguments in reverse, and does not change those given by value.
Variant Object::Invoke(WORD kind, const wchar_t* name, std::initializer_list<const VARIANT*> arguments) {
    if (object_ == nullptr) throw Failure(RunTimeError::InvalidProcedureCall, FromWide(name));
    std::vector<VARIANT> backwards;
    for (const VARIANT* argument : arguments) backwards.insert(backwards.begin(), *argument);
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = kind == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{backwards.data(), puts ? &put : nullptr, static_cast<UINT>(backwards.size()),
                          puts ? 1U : 0U};
    Variant answer;
    EXCEPINFO exception{};
    const HRESULT result = object_->Invoke(NumberOf(name), IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                           puts ? nullptr : &answer, &exception, nullptr);
    if (FAILED(result)) RefuseCall(result, exception, name);
    return answer;
}

bool CanMake(const wchar_t* program_id) {
    const ComUse com;
    CLSID id{};
    if (FAILED(::CLSIDFromProgID(program_id, &id))) return false;
    void* factory = nullptr;
    if (FAILED(::CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, IID_IUnknown, &factory))) return false;
    static_cast<IUnknown*>(factory)->Release();
    return true;
}

}  // namespace tav::win32
