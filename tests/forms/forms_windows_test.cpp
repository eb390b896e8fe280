// What the forms are as windows of Windows, among those of a host.
#include "forms/probe_form.h"
#include "forms/win32/shown_forms.h"
#include "platform/win32_windows.h"

namespace tav {
namespace {

using namespace test;

class FormsWindows : public ProbeForm {
 protected:
    static HWND Top() {
        for (HWND window : win32::ThreadWindows()) {
            if (::GetPropW(window, L"Probe") == window) return window;
        }
        return nullptr;
    }
    static HWND ToolTips() {
        for (HWND window : win32::ThreadWindows()) {
            if (win32::ClassOf(window) == TOOLTIPS_CLASSW && ::GetWindow(window, GW_OWNER) == Top())
                return window;
        }
        return nullptr;
    }
    // In the plan's order; null for the timer.
    static HWND Child(std::size_t control) { return ::GetDlgItem(Top(), static_cast<int>(1000 + control)); }
    static RECT Place(HWND window) {
        RECT place{};
        ::GetWindowRect(window, &place);
        return place;
    }
    static LONG Width(HWND window) { return Place(window).right - Place(window).left; }
    static LONG Height(HWND window) { return Place(window).bottom - Place(window).top; }
    // Every control is apart from the others, and inside the window where that does not scroll.
    static void ExpectApart() {
        const bool scrolled = (::GetWindowLongW(Top(), GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL)) != 0;
        RECT inside{};
        ::GetClientRect(Top(), &inside);
        ::MapWindowPoints(Top(), nullptr, reinterpret_cast<POINT*>(&inside), 2);
        for (std::size_t i = 0; i < kControls.size(); ++i) {
            const RECT one = Place(Child(i));
            RECT common{};
            if (Child(i) == nullptr) continue;
            EXPECT_TRUE(scrolled || (::IntersectRect(&common, &one, &inside) && ::EqualRect(&common, &one)))
                << i;
            for (std::size_t j = i + 1; i != kBox && j < kControls.size(); ++j) {
                const RECT other = Place(Child(j));
                EXPECT_FALSE(Child(j) != nullptr && ::IntersectRect(&common, &one, &other)) << i << " " << j;
            }
        }
    }
};

TEST_F(FormsWindows, ControlsStandApartAtEverySizeAndResolution) {
    ExpectApart();
    window->ShowColumn(kRows, 1, false);
    ::SetWindowPos(Top(), nullptr, 0, 0, 1, 1, SWP_NOZORDER);
    EXPECT_GT(Width(Top()), 200);
    ExpectApart();
    const LONG before = Height(Child(kOk));
    RECT twice = Place(Top());
    twice.right += Width(Top());
    twice.bottom += Height(Top());
    ::SendMessageW(Top(), WM_DPICHANGED, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&twice));
    EXPECT_NEAR(Height(Child(kOk)), 2 * before, 4);
    ExpectApart();
    window->SetText(kAsk, Text(60, u'ш'));
    ExpectApart();
    EXPECT_EQ(::SendMessageW(Child(kRows), LVM_GETCOLUMNWIDTH, 1, 0), 0);
}

// A host's loop knows nothing of our windows, and we take nothing of its own.
TEST_F(FormsWindows, AHostsLoopMovesTheKeyboardAndKeepsItsOwnKeys) {
    const auto run_loop = [] {
        std::vector<UINT> keys;
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_KEYDOWN) keys.push_back(message.message);
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
        return keys.size();
    };
    run_loop();
    ::PostMessageW(Child(kFolder), WM_KEYDOWN, VK_TAB, 1);
    EXPECT_EQ(run_loop(), 0U);
    EXPECT_EQ(Focused(), "Browse");
    HWND own = ::CreateWindowExW(0, L"EDIT", L"", WS_POPUP | WS_VISIBLE, 0, 0, 90, 20, nullptr, nullptr,
                                 nullptr, nullptr);
    for (const bool shown : {true, false}) {
        if (!shown) window->Hide();
        ::PostMessageW(own, WM_KEYDOWN, VK_TAB, 1);
        EXPECT_EQ(run_loop(), 1U) << shown;
    }
    ::DestroyWindow(own);
}

TEST_F(FormsWindows, ARequestToQuitEndsEveryLoopAndReachesTheHost) {
    FormPlan plan = kPlan;
    plan.name = u"Other";
    auto other = CurrentToolkit().Create(plan, events);
    ::PostQuitMessage(7);
    other->ShowModal(window.get());
    EXPECT_FALSE(OnScreen("Other"));
    EXPECT_TRUE(::IsWindowEnabled(Top()));
    CurrentToolkit().RunUntilClosed();
    EXPECT_FALSE(CurrentToolkit().ProcessEvents());
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) {
    }
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7U);
}

TEST_F(FormsWindows, TheModuleIsHeldByFormsThatAreNotGone) {
    EXPECT_EQ(OpenForms(), 1);
    events.react = [&] {
        window.reset();
        EXPECT_EQ(OpenForms(), 1);  // a handler of it runs
    };
    Click(In("Ok"));
    EXPECT_EQ(OpenForms(), 0);
}

// A host that ends may take our windows along.
TEST_F(FormsWindows, AWindowThatOthersDestroyedDoesNoHarm) {
    ::DestroyWindow(Top());
    EXPECT_FALSE(OnScreen("Probe"));
    window->SetText(kFolder, u"a");
    window->SetRows(kRows, {{u"один", {}}});
    window->SetNodes(kTree, {{u"a", {}, u"a"}, {u"b", u"a", u"b"}});
    window->Enable(kOk, false);
    window->Show();
    window->ShowModal(nullptr);
    EXPECT_EQ(window->GetText(kFolder), u"");
    EXPECT_FALSE(window->Exists());
    EXPECT_EQ(OpenForms(), 0);
    CurrentToolkit().RunUntilClosed();
}

TEST_F(FormsWindows, TheTipIsThatOfTheRowUnderThePointer) {
    HWND list = Child(kRows);
    const auto tip_at = [&](int y) {
        ::SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(5, y));
        NMTTDISPINFOW asked{};
        asked.hdr.hwndFrom = ToolTips();
        asked.hdr.code = TTN_GETDISPINFOW;
        ::SendMessageW(list, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&asked));
        return win32::FromWide(asked.lpszText);
    };
    RECT second{};
    ::SendMessageW(list, LB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&second));
    EXPECT_EQ(tip_at(static_cast<int>(second.top) - 1), u"<b>первая</b>");
    EXPECT_EQ(tip_at(static_cast<int>(second.top) + 1), u"вторая");
    EXPECT_EQ(tip_at(static_cast<int>(second.bottom) + 1), u"");
}

TEST_F(FormsWindows, PicturesAreDrawnAndNamed) {
    const auto icon = reinterpret_cast<HICON>(::SendMessageW(Child(kBrowse), BM_GETIMAGE, IMAGE_ICON, 0));
    ICONINFO drawn{};
    ASSERT_TRUE(::GetIconInfo(icon, &drawn));
    BITMAP bitmap{};
    ::GetObjectW(drawn.hbmColor, sizeof bitmap, &bitmap);
    EXPECT_EQ(bitmap.bmWidth, 16);
    ::DeleteObject(drawn.hbmColor);
    ::DeleteObject(drawn.hbmMask);
    EXPECT_EQ(TextOf(In("Browse")), "<b>Обновить</b>");
    const auto list =
        reinterpret_cast<HIMAGELIST>(::SendMessageW(Child(kTree), TVM_GETIMAGELIST, TVSIL_NORMAL, 0));
    EXPECT_EQ(::ImageList_GetImageCount(list), kPictures);
}

TEST_F(FormsWindows, AFolderIsChosenAndCancelled) {
    const Text folder = win32::Variable(L"windir");
    for (const WORD button : {IDOK, IDCANCEL}) {
        // The tree of the dialog finds its start in a thread of its own.
        Soon(
            [=] {
                HWND dialog = ::FindWindowW(L"#32770", nullptr);
                ASSERT_NE(dialog, nullptr);
                ::PostMessageW(dialog, WM_COMMAND, button, 0);
            },
            500);
        const Text chosen = CurrentToolkit().BrowseFolder(u"Папка", folder, window.get());
        EXPECT_EQ(chosen, button == IDOK ? folder : Text());
    }
    EXPECT_TRUE(::IsWindowEnabled(Top()));
}

}  // namespace
}  // namespace tav
