// Registering writes what hosts look for, and unregistering leaves nothing.

#include <gmock/gmock.h>

#include "component.h"
#include "platform/files.h"
#include "registry_listing.h"
#include "support/process.h"
#include "support/support.h"

namespace tav {
namespace {

using test::Classes;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

int Regsvr32(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "/s");
    return test::RunProgram("regsvr32", arguments).status;
}

// The library in a folder with Cyrillic letters and spaces.
class Registration : public testing::Test {
 protected:
    Registration() {
        MakeFolders(library_);
        EXPECT_TRUE(::CopyFileW(test::ComponentPath().c_str(), win32::Wide(library_).c_str(), TRUE));
        HKEY classes = nullptr;  // which every user of Windows has
        ::RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Classes", &classes);
        ::RegCloseKey(classes);
    }

    const test::TempFolder folder_;
    const Text library_ = folder_ / u"Выписки и акты/TAV_OperationImport.dll";
};

struct Scope {
    HKEY hive;
    HKEY other;
    std::vector<std::string> words;
};
const Scope kMachine = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, {}};
const Scope kUser = {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, {"/n", "/i:user"}};

TEST_F(Registration, WritesItsRowsAndLeavesNothing) {
    for (const Scope& scope : {kMachine, kUser}) {
        const auto before = Classes(scope.hive);
        const auto other = Classes(scope.other);
        std::vector<std::string> words = scope.words;
        words.push_back(ToUtf8(library_));
        ASSERT_EQ(Regsvr32(words), 0);
        ASSERT_EQ(Regsvr32(words), 0);
        std::string added;
        for (const std::string& line : Classes(scope.hive)) {
            const bool value = line.find('=') != std::string::npos;
            if (value && !std::ranges::binary_search(before, line)) added += line + "\n";
        }
        test::ExpectGolden("component/registration.txt",
                           ToUtf8(ReplaceAll(FromUtf8(added), FolderOf(library_), u"FOLDER\\")));
        EXPECT_EQ(Classes(scope.other), other);

        words.insert(words.begin(), "/u");
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(Regsvr32(words), 0);
            EXPECT_EQ(Classes(scope.hive), before);
        }
    }
}

TEST_F(Registration, TheOtherWidthKeepsWhatBelongsToBoth) {
    const std::string path = ToUtf8(library_);
    const auto before = Classes(HKEY_LOCAL_MACHINE);
    ASSERT_EQ(Regsvr32({path}), 0);
    const std::wstring other = L"Software\\Classes\\CLSID\\{3C424FBB-646F-4C50-8A37-CF1795E10B8B}";
    HKEY key = nullptr;
    ASSERT_EQ(::RegCreateKeyExW(HKEY_LOCAL_MACHINE, (other + L"\\InprocServer32").c_str(), 0, nullptr, 0,
                                KEY_WRITE | KEY_WOW64_32KEY, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    ::RegCloseKey(key);
    EXPECT_EQ(Regsvr32({"/u", path}), 0);
    CLSID found{};
    EXPECT_EQ(::CLSIDFromProgID(TAV_PROGID, &found), S_OK);
    const auto half = Classes(HKEY_LOCAL_MACHINE);
    EXPECT_THAT(half, Contains(HasSubstr("TypeLib\\{5939050B")));
    EXPECT_THAT(half, Not(Contains(HasSubstr(ToUtf8(FolderOf(library_)) + "TAV"))));

    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID", 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY,
                    &key);
    EXPECT_EQ(::RegDeleteTreeW(key, L"{3C424FBB-646F-4C50-8A37-CF1795E10B8B}"), ERROR_SUCCESS);
    ::RegCloseKey(key);
    EXPECT_EQ(Regsvr32({"/u", path}), 0);
    EXPECT_EQ(Classes(HKEY_LOCAL_MACHINE), before);
}

TEST_F(Registration, NobodyElseIsRegisteredFor) {
    const test::Library library;
    const auto install = library.Entry<HRESULT STDAPICALLTYPE(BOOL, LPCWSTR)>("DllInstall");
    EXPECT_EQ(install(TRUE, L"everybody"), E_INVALIDARG);
    EXPECT_EQ(::CoInitialize(nullptr), S_OK);
    CLSID found{};
    EXPECT_EQ(::CLSIDFromProgID(TAV_PROGID, &found), CO_E_CLASSSTRING);
    ::CoUninitialize();
}

// A host with a manifest finds the class beside itself.
TEST(RegistrationFree, AManifestIsEnough) {
    ACTCTXW request{};
    request.cbSize = sizeof request;
    const std::wstring folder = win32::Wide(ComponentFolder());
    const std::wstring source = folder + L"host.manifest";
    request.lpSource = source.c_str();
    request.lpAssemblyDirectory = folder.c_str();
    request.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    const HANDLE context = ::CreateActCtxW(&request);
    ASSERT_NE(context, INVALID_HANDLE_VALUE) << ::GetLastError();
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(::ActivateActCtx(context, &cookie));
    EXPECT_EQ(::CoInitialize(nullptr), S_OK);
    {
        CLSID found{};
        EXPECT_EQ(::CLSIDFromProgID(TAV_PROGID, &found), S_OK);
        void* object = nullptr;
        EXPECT_EQ(::CoCreateInstance(found, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object), S_OK);
        const test::Com<IDispatch> owned(static_cast<IDispatch*>(object));
    }
    ::CoUninitialize();
    ::DeactivateActCtx(0, cookie);
    ::ReleaseActCtx(context);
}

}  // namespace
}  // namespace tav
