// Late binding: which arguments reach which method, and the error for every call that is none.

#include "dispatch_windows.h"

#include <gmock/gmock.h>

#include <vector>

#include "component.h"
#include "open_class_object_windows.h"
#include "support/com_double_windows.h"

namespace tav {
namespace {

using test::Bstr;

// Writes down what is called.
struct Recorder final : test::DispatchDouble<OpenClassInterface> {
    Recorder() : DispatchDouble(kInterfaceId) {}

    HRESULT STDMETHODCALLTYPE start(BSTR inn, BSTR kpp, DATE vdm) override {
        return Note("start", inn, kpp, " " + std::to_string(vdm));
    }
    HRESULT STDMETHODCALLTYPE view_v_id(SHORT id) override {
        call = "view_v_id " + std::to_string(id);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE import(BSTR inn, BSTR kpp) override { return Note("import", inn, kpp); }
    HRESULT STDMETHODCALLTYPE view_v(BSTR inn, BSTR kpp) override { return Note("view_v", inn, kpp); }
    HRESULT STDMETHODCALLTYPE view_a(BSTR inn, BSTR kpp) override { return Note("view_a", inn, kpp); }

    HRESULT Note(const std::string& method, BSTR inn, BSTR kpp, const std::string& date = {}) {
        call = method + " " + ToUtf8(win32::FromWide(inn)) + " " + ToUtf8(win32::FromWide(kpp)) + date;
        return S_OK;
    }

    std::string call;
};

constexpr LCID kRussian = 0x419;

VARIANT Variant(VARTYPE type) {
    VARIANT variant;
    ::VariantInit(&variant);
    variant.vt = type;
    return variant;
}
VARIANT Word(const Bstr& text) {
    VARIANT variant = Variant(VT_BSTR);
    variant.bstrVal = text.get();
    return variant;
}
VARIANT Number(LONG number) {
    VARIANT variant = Variant(VT_I4);
    variant.lVal = number;
    return variant;
}
VARIANT Day(DATE date) {
    VARIANT variant = Variant(VT_DATE);
    variant.date = date;
    return variant;
}
VARIANT Error(SCODE code) {
    VARIANT variant = Variant(VT_ERROR);
    variant.scode = code;
    return variant;
}

const Bstr kInn(u"7701000000");
const Bstr kKpp(u"770101001");
const Bstr kDay(u"31.03.2011");
const Bstr kDigits(u"12");
const Bstr kLetters(u"abc");
const VARIANT kLeftOut = Error(DISP_E_PARAMNOTFOUND);

struct Case {
    DISPID method;
    std::vector<VARIANT> arguments;  // in the order of a person
    std::vector<DISPID> names = {};  // of the last ones
    HRESULT result = S_OK;
    std::string call = {};
    UINT wrong = 0;  // from the end, when the result is about one argument
    WORD flags = DISPATCH_METHOD;
};

TEST(Dispatch, ArgumentsReachTheMethodOrTheirErrorTheCaller) {
    VARIANT by_reference = Variant(VT_BYREF | VT_VARIANT);
    VARIANT inner = Word(kInn);
    by_reference.pvarVal = &inner;
    const std::vector<Case> cases = {
        {1, {Word(kInn), Word(kKpp)}, {}, S_OK, "start 7701000000 770101001 72686.000000"},
        {1, {Word(kInn), Word(kKpp), kLeftOut}, {}, S_OK, "start 7701000000 770101001 72686.000000"},
        {1, {Word(kInn), Word(kKpp), Day(40633.5)}, {}, S_OK, "start 7701000000 770101001 40633.500000"},
        {1, {Word(kInn), Word(kKpp), Word(kDay)}, {}, S_OK, "start 7701000000 770101001 40633.000000"},
        {1, {Day(40633), Word(kKpp), Word(kInn)}, {2, 1, 0}, S_OK, "start 7701000000 770101001 40633.000000"},
        {1, {Word(kInn), Word(kKpp)}, {1}, S_OK, "start 7701000000 770101001 72686.000000"},
        {2, {Number(-7)}, {}, S_OK, "view_v_id -7"},
        {2, {Word(kDigits)}, {}, S_OK, "view_v_id 12"},
        {3, {Number(7701), Variant(VT_EMPTY)}, {}, S_OK, "import 7701 "},
        {3, {by_reference, Word(kKpp)}, {}, S_OK, "import 7701000000 770101001"},
        {4,
         {Word(kInn), Word(kKpp)},
         {},
         S_OK,
         "view_v 7701000000 770101001",
         0,
         DISPATCH_METHOD | DISPATCH_PROPERTYGET},
        {5, {Word(kInn), Word(kKpp)}, {}, S_OK, "view_a 7701000000 770101001"},

        {1, {Word(kInn)}, {}, DISP_E_BADPARAMCOUNT},
        {1, {Word(kInn), Word(kKpp), Day(1), Day(1)}, {}, DISP_E_BADPARAMCOUNT},
        {2, {}, {}, DISP_E_BADPARAMCOUNT},
        {3, {Word(kInn), Word(kKpp), kLeftOut}, {}, DISP_E_BADPARAMCOUNT},
        {3, {Word(kInn), Word(kKpp)}, {0}, DISP_E_BADPARAMCOUNT},
        {3, {Word(kInn), Word(kKpp)}, {2}, DISP_E_PARAMNOTFOUND, {}, 0},
        {3, {Word(kInn), Word(kKpp)}, {-1}, DISP_E_PARAMNOTFOUND, {}, 0},
        {1, {Word(kInn), Day(1)}, {2}, DISP_E_PARAMNOTOPTIONAL},
        {3, {kLeftOut, Word(kKpp)}, {}, DISP_E_PARAMNOTOPTIONAL, {}, 1},
        {2, {Word(kLetters)}, {}, DISP_E_TYPEMISMATCH, {}, 0},
        {2, {Number(40000)}, {}, DISP_E_OVERFLOW, {}, 0},
        {1, {Word(kInn), Word(kKpp), Word(kLetters)}, {}, DISP_E_TYPEMISMATCH, {}, 0},
        {4, {Variant(VT_NULL), Word(kKpp)}, {}, DISP_E_TYPEMISMATCH, {}, 1},
        {4, {Error(E_FAIL), Word(kKpp)}, {}, DISP_E_TYPEMISMATCH, {}, 1},
        {0, {}, {}, DISP_E_MEMBERNOTFOUND},
        {6, {}, {}, DISP_E_MEMBERNOTFOUND},
        {5, {Word(kInn), Word(kKpp)}, {}, DISP_E_MEMBERNOTFOUND, {}, 0, DISPATCH_PROPERTYGET},
    };
    for (const Case& item : cases) {
        SCOPED_TRACE(&item - cases.data());
        std::vector<VARIANT> arguments(item.arguments.rbegin(), item.arguments.rend());
        std::vector<DISPID> names(item.names.rbegin(), item.names.rend());
        DISPPARAMS parameters{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                              static_cast<UINT>(names.size())};
        Recorder recorder;
        UINT wrong = 0;
        EXPECT_EQ(dispatch::Invoke(recorder, item.method, kRussian, item.flags, &parameters, &wrong),
                  item.result);
        EXPECT_EQ(recorder.call, item.call);
        if (item.wrong != 0) {
            EXPECT_EQ(wrong, item.wrong);
        }
    }
}

TEST(Dispatch, NamesAreTheSameInEveryLetterCase) {
    struct NameCase {
        std::vector<std::wstring> names;
        HRESULT result;
        std::vector<DISPID> ids;
    };
    const std::vector<NameCase> cases = {
        {{L"start", L"inn", L"kpp", L"vdm"}, S_OK, {1, 0, 1, 2}},
        {{L"VIEW_V_ID", L"Id"}, S_OK, {2, 0}},
        {{L"Import", L"KPP"}, S_OK, {3, 1}},
        {{L"view_v"}, S_OK, {4}},
        {{L"View_A"}, S_OK, {5}},
        {{L"import", L"vdm"}, DISP_E_UNKNOWNNAME, {3, DISPID_UNKNOWN}},
        {{L"stop", L"inn"}, DISP_E_UNKNOWNNAME, {DISPID_UNKNOWN, DISPID_UNKNOWN}},
    };
    for (NameCase item : cases) {
        std::vector<wchar_t*> names;
        for (std::wstring& name : item.names) names.push_back(name.data());
        std::vector<DISPID> ids(names.size(), 77);
        EXPECT_EQ(dispatch::IdsOfNames(names.data(), static_cast<UINT>(names.size()), ids.data()),
                  item.result);
        EXPECT_EQ(ids, item.ids);
    }
    EXPECT_EQ(dispatch::IdsOfNames(nullptr, 0, nullptr), E_INVALIDARG);
}

}  // namespace
}  // namespace tav
