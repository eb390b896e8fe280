// Hosts that end while windows are open, and hosts of more than one thread.

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "component.h"
#include "db/empty_database.h"
#include "open_class_object_windows.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "settings/settings.h"
#include "somebody.h"
#include "support/screen.h"
#include "support/support.h"

namespace tav {
namespace {

using test::Bstr;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// A form that is shown, or a control of one.
HWND Named(const wchar_t* name, HWND parent = nullptr) {
    for (HWND at = nullptr; (at = ::FindWindowExW(parent, at, nullptr, nullptr)) != nullptr;) {
        if (::GetPropW(at, name) != nullptr && ::IsWindowVisible(at)) return at;
    }
    return nullptr;
}

class Host : public testing::Test {
 protected:
    Host() {
        CreateDatabase(folder_ / u"PlX_Base.mdb");
        samples::SampleFolder(folder_ / u"in");
        WriteSetting(u"DataBasePath", folder_.path());
        WriteSetting(u"ImportPath", folder_ / u"in");
        WriteSetting(u"ExportPath", u"C:\\отчёты");
        Make()->import(inn_.get(), kpp_.get());
        EXPECT_EQ(library_.CanUnloadNow(), S_OK);  // the progress window has not waited for messages
    }
    void WaitUntilGone() const {
        EXPECT_TRUE(test::Wait([&] { return library_.CanUnloadNow() == S_OK; }));
    }
    test::Com<OpenClassInterface> Make() const { return library_.Create<OpenClassInterface>(kInterfaceId); }
    void Start() const { Make()->start(inn_.get(), kpp_.get(), 72686); }
    // On a thread that has COM and ends with the last of its work.
    template <class Work>
    void OnAnotherThread(Work work) const {
        std::atomic<bool> done = false;
        std::thread thread([&] {
            EXPECT_EQ(::CoInitialize(nullptr), S_OK);
            work();
            done = true;
        });
        EXPECT_TRUE(test::Wait([&] { return done.load(); }));
        thread.join();
    }

    test::Somebody somebody_;
    const test::OwnSettings settings_;
    const test::TempFolder folder_;
    const test::Library library_;
    const Bstr inn_{samples::SampleTaxpayer().inn};
    const Bstr kpp_{samples::SampleTaxpayer().kpp};
};

// The host leaves its loop and its thread: with the main window open, with a dialog that waits in front of
// it, without COM since before.
TEST_F(Host, EndsWithWindowsOpenAndTheNextOneShowsThem) {
    for (const bool dialog : {false, true}) {
        OnAnotherThread([&] {
            Start();
            ::FreeLibrary(::GetModuleHandleW(L"TAV_OperationImport.dll"));
            ::CoUninitialize();
            const HWND button = Named(L"Command2", Named(L"frmmain"));
            EXPECT_NE(button, nullptr);
            EXPECT_TRUE(test::Wait([&] { return ::IsWindowEnabled(button) != FALSE; }));
            if (dialog) ::PostMessageW(button, BM_CLICK, 0, 0);
            const DWORD thread = ::GetCurrentThreadId();
            std::thread quitter([&] {
                for (int i = 0; i < 3000 && dialog && Named(L"frmDialog") == nullptr; ++i) ::Sleep(10);
                EXPECT_EQ(Named(L"frmDialog") != nullptr, dialog);
                ::PostThreadMessageW(thread, WM_QUIT, 0, 0);
            });
            for (MSG message; ::GetMessageW(&message, nullptr, 0, 0) > 0;) ::DispatchMessageW(&message);
            quitter.join();
        });
        EXPECT_EQ(Named(L"frmmain"), nullptr);
        EXPECT_EQ(SettingText(u"ExportPath"), u"C:\\отчёты");
        EXPECT_EQ(SettingText(u"ImportPath"), folder_ / u"in");

        Start();
        const HWND window = Named(L"frmmain");
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(::GetWindowThreadProcessId(window, nullptr), ::GetCurrentThreadId());
        ::PostMessageW(window, WM_CLOSE, 0, 0);
        WaitUntilGone();
    }
    EXPECT_EQ(somebody_.Leave(), "");
}

TEST_F(Host, OfASecondThreadIsRefusedWhileTheFirstHasWindows) {
    Start();
    OnAnotherThread([&] { Make()->import(inn_.get(), kpp_.get()); });
    ::SendMessageW(Named(L"frmmain"), WM_CLOSE, 0, 0);
    WaitUntilGone();
    OnAnotherThread([&] { Make()->import(inn_.get(), kpp_.get()); });
    EXPECT_THAT(somebody_.Leave(), AllOf(StartsWith("Ошибка в функции import: Компонентом пользуется другой"),
                                         HasSubstr("поток " + std::to_string(::GetCurrentThreadId()) +
                                                   ": открыто окно «Групповой импорт"),
                                         Not(HasSubstr("\nОшибка"))));
}

// As by another process: the component waits for a while, refuses other threads meanwhile, and says it once.
TEST_F(Host, OfASecondProcessIsToldOnceThatTheDatabaseIsHeld) {
    const auto hold = [&] { return win32::OpenFile(folder_ / u"PlX_Base.mdb", GENERIC_READ, 0); };
    {
        win32::Handle holder = hold();
        std::thread lets_go([&] {
            ::CoInitialize(nullptr);
            ::Sleep(1500);
            Make()->view_a(inn_.get(), kpp_.get());
            holder.Close();
        });
        Make()->import(inn_.get(), kpp_.get());
        lets_go.join();
    }
    const win32::Handle holder = hold();
    Make()->import(inn_.get(), kpp_.get());
    std::string said = somebody_.Leave();
    const std::string busy =
        "Ошибка в функции View_A: Компонентом пользуется другой поток этой программы (поток " +
        std::to_string(::GetCurrentThreadId()) + ": выполняется import). ";
    ASSERT_THAT(said, StartsWith(busy));
    said.erase(0, said.find('\n') + 1);
    EXPECT_THAT(said, AllOf(StartsWith("Ошибка в функции LoadFromXml: "), HasSubstr("file already in use"),
                            Not(HasSubstr("\nОшибка"))));
}

// A host may destroy what it finds on its thread.
TEST_F(Host, ThatDestroysAWindowGetsANewOne) {
    Start();
    ::DestroyWindow(Named(L"frmmain"));
    EXPECT_EQ(library_.CanUnloadNow(), S_OK);
    Start();
    EXPECT_NE(Named(L"frmmain"), nullptr);
    ::SendMessageW(Named(L"frmmain"), WM_CLOSE, 0, 0);
}

}  // namespace
}  // namespace tav
