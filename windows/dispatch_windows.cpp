#include "dispatch_windows.h"

#include <algorithm>
#include <array>
#include <span>

#include "open_class_object_windows.h"
#include "platform/automation_windows.h"

namespace tav::dispatch {
namespace {

using win32::Variant;

struct Parameter {
    const wchar_t* name;
    VARTYPE type;
    const Date* omitted = nullptr;  // the value of one that may be left out
};

constexpr std::size_t kMostParameters = 3;
using Values = std::array<Variant, kMostParameters>;

struct Method {
    const wchar_t* name;
    std::span<const Parameter> parameters;
    HRESULT (*call)(OpenClassInterface& object, Values& values);
};

constexpr std::array<Parameter, 3> kTaxpayerAndDate = {{
    {L"inn", VT_BSTR},
    {L"kpp", VT_BSTR},
    {L"vdm", VT_DATE, &OpenClass::kNoDateLimit},
}};
constexpr std::span kTaxpayer = std::span(kTaxpayerAndDate).first(2);
constexpr std::array<Parameter, 1> kStatement = {{{L"id", VT_I2}}};

template <HRESULT (STDMETHODCALLTYPE OpenClassInterface::*method)(BSTR, BSTR)>
HRESULT CallForTaxpayer(OpenClassInterface& object, Values& values) {
    return (object.*method)(values[0].bstrVal, values[1].bstrVal);
}

HRESULT CallStart(OpenClassInterface& object, Values& values) {
    return object.start(values[0].bstrVal, values[1].bstrVal, values[2].date);
}

HRESULT CallViewVId(OpenClassInterface& object, Values& values) {
    return object.view_v_id(values[0].iVal);
}

// A method's number is its place here, from 1.
constexpr std::array<Method, 5> kMethods = {{
    {L"start", kTaxpayerAndDate, CallStart},
    {L"view_v_id", kStatement, CallViewVId},
    {L"import", kTaxpayer, CallForTaxpayer<&OpenClassInterface::import>},
    {L"view_v", kTaxpayer, CallForTaxpayer<&OpenClassInterface::view_v>},
    {L"view_a", kTaxpayer, CallForTaxpayer<&OpenClassInterface::view_a>},
}};

// The place of a name in a table, or DISPID_UNKNOWN.
template <class Table>
DISPID PlaceOf(const wchar_t* name, const Table& table) {
    const auto found = std::ranges::find_if(table, [&](const auto& row) {
        return ::CompareStringOrdinal(row.name, -1, name, -1, TRUE) == CSTR_EQUAL;
    });
    return found == table.end() ? DISPID_UNKNOWN : static_cast<DISPID>(found - table.begin());
}

bool IsLeftOut(const VARIANT& argument) {
    return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
}

HRESULT Converted(VARIANT& argument, VARTYPE type, LCID locale, Variant& value) {
    Variant plain;  // not a reference
    HRESULT result = ::VariantCopyInd(&plain, &argument);
    if (SUCCEEDED(result)) result = ::VariantChangeTypeEx(&value, &plain, locale, 0, type);
    if (SUCCEEDED(result) || result == DISP_E_OVERFLOW || result == E_OUTOFMEMORY) return result;
    return DISP_E_TYPEMISMATCH;
}

// The places in `arguments` by parameters; -1 where the argument is missing.
// Arguments come in reverse order, the named ones before the others.
struct Assignment {
    std::array<int, kMostParameters> places = {-1, -1, -1};
    HRESULT result = S_OK;
    UINT wrong = 0;
};

Assignment Assign(std::span<const Parameter> parameters, const DISPPARAMS& arguments) {
    Assignment assigned;
    const auto required = static_cast<std::size_t>(std::ranges::count_if(
        parameters, [](const Parameter& parameter) { return parameter.omitted == nullptr; }));
    if (arguments.cArgs > parameters.size() || arguments.cArgs < required) {
        assigned.result = DISP_E_BADPARAMCOUNT;
        return assigned;
    }
    for (UINT place = 0; place < arguments.cArgs; ++place) {
        const bool named = place < arguments.cNamedArgs;
        const auto parameter = static_cast<std::size_t>(
            named ? arguments.rgdispidNamedArgs[place] : static_cast<DISPID>(arguments.cArgs - 1 - place));
        assigned.wrong = place;
        if (parameter >= parameters.size()) {
            assigned.result = DISP_E_PARAMNOTFOUND;
            return assigned;
        }
        if (assigned.places[parameter] >= 0) {
            assigned.result = DISP_E_BADPARAMCOUNT;
            return assigned;
        }
        assigned.places[parameter] = static_cast<int>(place);
    }
    return assigned;
}

}  // namespace

HRESULT IdsOfNames(LPOLESTR* names, UINT count, DISPID* ids) {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    std::fill_n(ids, count, DISPID_UNKNOWN);
    const DISPID method = PlaceOf(names[0], kMethods);
    if (method == DISPID_UNKNOWN) return DISP_E_UNKNOWNNAME;
    ids[0] = method + 1;
    const auto& parameters = kMethods[static_cast<std::size_t>(method)].parameters;
    std::transform(names + 1, names + count, ids + 1,
                   [&](const wchar_t* name) { return PlaceOf(name, parameters); });
    const bool unknown = std::find(ids, ids + count, DISPID_UNKNOWN) != ids + count;
    return unknown ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT Invoke(OpenClassInterface& object, DISPID method, LCID locale, WORD flags,
               const DISPPARAMS* arguments, UINT* wrong_argument) {
    if (method < 1 || method > static_cast<DISPID>(kMethods.size()) || (flags & DISPATCH_METHOD) == 0)
        return DISP_E_MEMBERNOTFOUND;
    if (arguments == nullptr || arguments->cNamedArgs > arguments->cArgs) return E_INVALIDARG;
    const auto& [name, parameters, call] = kMethods[static_cast<std::size_t>(method - 1)];
    UINT unused = 0;
    UINT& wrong = wrong_argument == nullptr ? unused : *wrong_argument;

    const Assignment assigned = Assign(parameters, *arguments);
    wrong = assigned.wrong;
    if (FAILED(assigned.result)) return assigned.result;
    Values values;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const int place = assigned.places[i];
        VARIANT* argument = place < 0 ? nullptr : &arguments->rgvarg[place];
        if (argument != nullptr && !IsLeftOut(*argument)) {
            wrong = static_cast<UINT>(place);
            const HRESULT result = Converted(*argument, parameters[i].type, locale, values[i]);
            if (FAILED(result)) return result;
        } else if (parameters[i].omitted != nullptr) {
            values[i].vt = VT_DATE;
            values[i].date = parameters[i].omitted->serial;
        } else {
            wrong = place < 0 ? 0 : static_cast<UINT>(place);
            return DISP_E_PARAMNOTOPTIONAL;
        }
    }
    return call(object, values);
}

}  // namespace tav::dispatch
