#include "open_class_object_windows.h"

#include "common/concat.h"
#include "common/guard.h"
#include "dispatch_windows.h"
#include "one_thread_windows.h"
#include "platform/border_windows.h"
#include "platform/floating_point_windows.h"
#include "type_library_windows.h"
#include "ui/screen.h"

namespace tav {
namespace {

// The days that a date of Automation can be: 01.01.0100 to 31.12.9999.
constexpr double kFirstDay = -657434;
constexpr double kEndOfDays = 2958466;

Text TextOf(BSTR text) {
    return win32::FromWide({text, ::SysStringLen(text)});
}

Date DateOf(DATE date) {
    if (!(date > kFirstDay - 1 && date < kEndOfDays)) throw Failure(RunTimeError::Overflow, u"vdm");
    return Date{date};
}

// The border: not even a failure to show a failure gets across.
template <class Operation>
HRESULT Succeed(TextView name, Operation&& operation) noexcept {
    return win32::AtBorder([&] {
        try {
            const Text title = Concat(u"Ошибка в функции ", name);
            if (const OneThread thread(name); thread) {
                UseWindowsIfAny();  // for what is wrong with an argument, too
                Guarded(title, operation);
            } else {
                ShowWrongThread(title);
            }
        } catch (...) {
            return S_OK;
        }
        return S_OK;
    });
}

}  // namespace

HRESULT OpenClassObject::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (id == IID_IUnknown || id == IID_IDispatch || id == kInterfaceId) {
        *object = static_cast<OpenClassInterface*>(this);
    } else if (id == IID_IProvideClassInfo) {
        *object = static_cast<IProvideClassInfo*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG OpenClassObject::AddRef() {
    return static_cast<ULONG>(::InterlockedIncrement(&references_));
}

ULONG OpenClassObject::Release() {
    const LONG left = ::InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT OpenClassObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT OpenClassObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
    const win32::OwnFloatingPoint own;
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return index == 0 ? TypeInfoOf(kInterfaceId, info) : DISP_E_BADINDEX;
}

HRESULT OpenClassObject::GetClassInfo(ITypeInfo** info) {
    const win32::OwnFloatingPoint own;
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return TypeInfoOf(kClassId, info);
}

HRESULT OpenClassObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    const win32::OwnFloatingPoint own;
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    return dispatch::IdsOfNames(names, count, ids);
}

HRESULT OpenClassObject::Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*, UINT* wrong_argument) {
    const win32::OwnFloatingPoint own;  // arguments are converted here
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (result != nullptr) ::VariantInit(result);
    return dispatch::Invoke(*this, member, locale, flags, arguments, wrong_argument);
}

HRESULT OpenClassObject::start(BSTR inn, BSTR kpp, DATE vdm) {
    return Succeed(u"Start", [&] { component_.start(TextOf(inn), TextOf(kpp), DateOf(vdm)); });
}

HRESULT OpenClassObject::view_v_id(SHORT id) {
    return Succeed(u"View_V_ID", [&] { component_.view_v_id(id); });
}

HRESULT OpenClassObject::import(BSTR inn, BSTR kpp) {
    return Succeed(u"import", [&] { component_.import(TextOf(inn), TextOf(kpp)); });
}

HRESULT OpenClassObject::view_v(BSTR inn, BSTR kpp) {
    return Succeed(u"View_V", [&] { component_.view_v(TextOf(inn), TextOf(kpp)); });
}

HRESULT OpenClassObject::view_a(BSTR inn, BSTR kpp) {
    return Succeed(u"View_A", [&] { component_.view_a(TextOf(inn), TextOf(kpp)); });
}

}  // namespace tav
