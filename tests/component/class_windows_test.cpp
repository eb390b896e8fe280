// The class, by a program that loads the library itself; and what the library says of itself.

#include <gmock/gmock.h>
#include <ocidl.h>

#include <cmath>

#include "component.h"
#include "db/empty_database.h"
#include "open_class_object_windows.h"
#include "settings/settings.h"
#include "somebody.h"
#include "support/screen.h"
#include "support/support.h"

namespace tav {
namespace {

using test::Bstr;
using test::Com;

const test::Library& TheLibrary() {
    static const test::Library library;
    return library;
}

TEST(Class, IsTheOnlyOneAndCannotBeAggregated) {
    Com<IClassFactory> factory;
    EXPECT_EQ(TheLibrary().GetClassObject(IID_IDispatch, IID_IClassFactory, factory),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(TheLibrary().GetClassObject(kClassId, IID_IDispatch, factory), E_NOINTERFACE);
    ASSERT_EQ(TheLibrary().GetClassObject(kClassId, IID_IClassFactory, factory), S_OK);
    void* object = &factory;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &object), E_NOINTERFACE);
}

TEST(Class, ObjectsAndLocksKeepTheLibraryBusy) {
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_OK);
    auto object = TheLibrary().Create<IDispatch>(IID_IDispatch);
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_FALSE);
    object.reset();
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_OK);
    Com<IClassFactory> factory;
    TheLibrary().GetClassObject(kClassId, IID_IClassFactory, factory);
    factory->LockServer(TRUE);
    IClassFactory* const released = factory.get();
    factory.reset();
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_FALSE);
    released->LockServer(FALSE);
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_OK);
}

TEST(Class, StaysLoadedOnceItMadeAnObject) {
    TheLibrary().Create<IUnknown>(IID_IUnknown);
    const HMODULE module = ::GetModuleHandleW(L"TAV_OperationImport.dll");
    for (int i = 0; i < 3; ++i) ::FreeLibrary(module);
    EXPECT_EQ(::GetModuleHandleW(L"TAV_OperationImport.dll"), module);
}

TEST(Class, AnObjectIsOneWhateverItIsAskedFor) {
    const auto object = TheLibrary().Create<IUnknown>(IID_IUnknown);
    const auto dispatch = test::Query<IDispatch>(*object, IID_IDispatch);
    const auto described = test::Query<IProvideClassInfo>(*object, IID_IProvideClassInfo);
    const auto methods = test::Query<OpenClassInterface>(*object, kInterfaceId);
    ASSERT_TRUE(dispatch && described && methods);
    EXPECT_EQ(test::Query<IUnknown>(*described, IID_IUnknown).get(), object.get());
    EXPECT_EQ(test::Query<IStream>(*object, IID_IStream), nullptr);
    ITypeInfo* info = nullptr;
    ASSERT_EQ(described->GetClassInfo(&info), S_OK);
    const Com<ITypeInfo> owned(info);
    Bstr name;
    info->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr);
    EXPECT_EQ(name.Utf8(), "OpenClass");
}

TEST(Class, MethodsOfTheVtableSucceedAndWithoutAFolderAnImportDoesNothing) {
    const test::OwnSettings settings;
    const auto methods = TheLibrary().Create<OpenClassInterface>(kInterfaceId);
    EXPECT_EQ(methods->import(nullptr, nullptr), S_OK);
    EXPECT_EQ(methods->import(Bstr(u"7701000000").get(), Bstr(u"770101001").get()), S_OK);
}

TEST(Class, WindowsKeepTheLibraryBusyWhenTheObjectIsGone) {
    const test::OwnSettings settings;
    const test::TempFolder folder;
    ASSERT_TRUE(WriteSetting(u"DataBasePath", folder.path()));
    CreateDatabase(folder / u"PlX_Base.mdb");
    test::Somebody somebody;
    TheLibrary().Create<OpenClassInterface>(kInterfaceId)->start(Bstr(u"77").get(), Bstr(u"1").get(), 40633);
    const HWND window = ::FindWindowW(L"TAV_OperationImport", nullptr);
    ASSERT_TRUE(::IsWindowVisible(window));
    EXPECT_EQ(TheLibrary().CanUnloadNow(), S_FALSE);
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(test::Wait([] { return TheLibrary().CanUnloadNow() == S_OK; }));
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(somebody.Leave(), "");
}

TEST(Class, ADateThatIsNoneIsShownAndTheCallSucceeds) {
    for (const double date : {1e300, -1e300, std::nan(""), 2958466.0, -657435.0}) {
        test::Somebody somebody;
        const auto methods = TheLibrary().Create<OpenClassInterface>(kInterfaceId);
        EXPECT_EQ(methods->start(nullptr, nullptr, date), S_OK);
        EXPECT_EQ(somebody.Leave(), "Ошибка в функции Start: Overflow: vdm\n\n");
    }
}

// Name, help, flags and parameters of a library as one text.
std::string Described(ITypeLib& library) {
    std::string out;
    Bstr name, help;
    library.GetDocumentation(-1, name.out(), help.out(), nullptr, nullptr);
    out += name.Utf8() + ": " + help.Utf8() + "\n";
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        ITypeInfo* type = nullptr;
        library.GetTypeInfo(i, &type);
        const Com<ITypeInfo> owned(type);
        TYPEATTR* type_facts = nullptr;
        type->GetTypeAttr(&type_facts);
        type->GetDocumentation(MEMBERID_NIL, name.out(), help.out(), nullptr, nullptr);
        out += name.Utf8() + ": " + help.Utf8() + " kind " + std::to_string(type_facts->typekind) +
               " flags " + std::to_string(type_facts->wTypeFlags) + "\n";
        for (UINT f = 0; f < type_facts->cFuncs; ++f) {
            FUNCDESC* method = nullptr;
            type->GetFuncDesc(f, &method);
            BSTR names[8] = {};
            UINT count = 0;
            type->GetNames(method->memid, names, 8, &count);
            if (method->memid < 0x60000000) {
                out += "  " + std::to_string(method->memid) + " slot " +
                       std::to_string(method->oVft / static_cast<int>(sizeof(void*)));
                for (UINT n = 0; n < count; ++n) out += " " + ToUtf8(win32::FromWide(names[n]));
                for (int p = 0; p < method->cParams; ++p) {
                    const ELEMDESC& parameter = method->lprgelemdescParam[p];
                    out += ", type " + std::to_string(parameter.tdesc.vt) + " flags " +
                           std::to_string(parameter.paramdesc.wParamFlags);
                    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FHASDEFAULT) == 0) continue;
                    const VARIANT& standard = parameter.paramdesc.pparamdescex->varDefaultValue;
                    out +=
                        " default type " + std::to_string(standard.vt) + " " + std::to_string(standard.date);
                }
                out += " -> " + std::to_string(method->elemdescFunc.tdesc.vt) + "\n";
            }
            for (UINT n = 0; n < count; ++n) ::SysFreeString(names[n]);
            type->ReleaseFuncDesc(method);
        }
        type->ReleaseTypeAttr(type_facts);
    }
    return out;
}

TEST(TypeLibrary, SaysWhatTheClassCanDo) {
    ITypeLib* library = nullptr;
    ASSERT_EQ(::LoadTypeLibEx(test::ComponentPath().c_str(), REGKIND_NONE, &library), S_OK);
    const Com<ITypeLib> owned(library);
    TLIBATTR* facts = nullptr;
    ASSERT_EQ(library->GetLibAttr(&facts), S_OK);
    EXPECT_TRUE(facts->guid == kLibraryId);
    EXPECT_EQ(facts->wMajorVerNum, 1);
    EXPECT_EQ(facts->wMinorVerNum, 0);
    EXPECT_EQ(facts->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
    library->ReleaseTLibAttr(facts);
    for (const GUID& id : {kInterfaceId, kClassId}) {
        ITypeInfo* type = nullptr;
        EXPECT_EQ(library->GetTypeInfoOfGuid(id, &type), S_OK);
        const Com<ITypeInfo> found(type);
    }
    test::ExpectGolden("component/type_library.txt", Described(*library));
}

}  // namespace
}  // namespace tav
