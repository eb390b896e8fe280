#include "support/screen_windows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "forms/forms.h"
#include "platform/win32_windows.h"

namespace tav::test {
namespace {

using win32::ClassOf;
using Windows = std::vector<HWND>;

BOOL CALLBACK Collect(HWND window, LPARAM list) {
    reinterpret_cast<Windows*>(list)->push_back(window);
    return TRUE;
}
// Another program's, if it is not 0.
DWORD driven = 0;

DWORD Thread() {
    return driven == 0 ? ::GetCurrentThreadId() : driven;
}
Windows OfThread() {
    return win32::ThreadWindows(Thread());
}

// The window that is active and the one that has the keyboard.
GUITHREADINFO State() {
    GUITHREADINFO state{};
    state.cbSize = sizeof state;
    ::GetGUIThreadInfo(Thread(), &state);
    return state;
}

HWND Named(const Windows& windows, const std::string& name) {
    const std::wstring property = win32::Wide(FromUtf8(name));
    for (HWND window : windows) {
        if (::GetPropW(window, property.c_str()) == window) return window;
    }
    return nullptr;
}

HWND WindowNamed(const std::string& name) {
    HWND window = Named(OfThread(), name);
    return ::IsWindowVisible(window) ? window : nullptr;
}

HWND Find(const Spot& spot) {
    Windows children;
    HWND form = WindowNamed(spot.window);
    if (form != nullptr) ::EnumChildWindows(form, Collect, reinterpret_cast<LPARAM>(&children));
    HWND found = Named(children, spot.control);
    EXPECT_NE(found, nullptr) << spot.window << "." << spot.control;
    return found;
}

LRESULT Send(HWND window, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return ::SendMessageW(window, message, wparam, lparam);
}
template <class Structure>
LPARAM Pointer(Structure& structure) {
    return reinterpret_cast<LPARAM>(&structure);
}

std::wstring Shown(HWND window) {
    std::wstring text(static_cast<std::size_t>(Send(window, WM_GETTEXTLENGTH)), L'\0');
    text.resize(static_cast<std::size_t>(
        Send(window, WM_GETTEXT, text.size() + 1, reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::wstring WithoutMnemonic(const std::wstring& text) {
    std::wstring out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&' && i + 1 < text.size()) ++i;
        out += text[i];
    }
    return out;
}

std::string Utf8(const std::wstring& text) {
    return ToUtf8(win32::FromWide(text));
}

void DoubleClick(HWND window, LPARAM at) {
    ::PostMessageW(window, WM_LBUTTONUP, 0, at);  // for a control that waits for it
    Send(window, WM_LBUTTONDOWN, MK_LBUTTON, at);
    WaitFor(1);
    Send(window, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
    Send(window, WM_LBUTTONUP, 0, at);
}

struct Node {
    HTREEITEM item;
    std::wstring text;
    std::size_t depth;
};

void AddNodes(HWND tree, HTREEITEM first, std::size_t depth, std::vector<Node>& nodes) {
    while (first != nullptr) {
        wchar_t text[260] = L"";
        TVITEMW item{};
        item.mask = TVIF_TEXT;
        item.hItem = first;
        item.pszText = text;
        item.cchTextMax = static_cast<int>(std::size(text));
        Send(tree, TVM_GETITEMW, 0, Pointer(item));
        nodes.push_back({first, text, depth});
        const auto next = [&](WPARAM which) {
            return reinterpret_cast<HTREEITEM>(
                Send(tree, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(first)));
        };
        AddNodes(tree, next(TVGN_CHILD), depth + 1, nodes);
        first = next(TVGN_NEXT);
    }
}

std::vector<Node> Nodes(HWND tree) {
    std::vector<Node> nodes;
    AddNodes(tree, reinterpret_cast<HTREEITEM>(Send(tree, TVM_GETNEXTITEM, TVGN_ROOT)), 0, nodes);
    return nodes;
}

HTREEITEM Choose(HWND tree, TextView text) {
    for (const Node& node : Nodes(tree)) {
        if (!node.text.starts_with(win32::Wide(text))) continue;
        Send(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node.item));
        return node.item;
    }
    ADD_FAILURE() << "no node " << ToUtf8(text);
    return nullptr;
}

HWND Box() {
    for (HWND window : OfThread()) {
        if (ClassOf(window) == L"#32770" && ::IsWindowVisible(window)) return window;
    }
    return nullptr;
}

std::map<UINT_PTR, std::function<void()>>& Actions() {
    static std::map<UINT_PTR, std::function<void()>> actions;
    return actions;
}

}  // namespace

DrivenProgram::DrivenProgram(HWND window) {
    DWORD process = 0;
    driven = ::GetWindowThreadProcessId(window, &process);
    process_ = win32::Handle(::OpenProcess(SYNCHRONIZE, FALSE, process));
}
DrivenProgram::~DrivenProgram() {
    driven = 0;
}
bool DrivenProgram::Ended() const {
    return ::WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0;
}

bool Wait(const std::function<bool()>& until) {
    constexpr ULONGLONG kMilliseconds = 60'000;
    const ULONGLONG end = ::GetTickCount64() + kMilliseconds;
    while (!until()) {
        if (::GetTickCount64() > end) return false;
        CurrentToolkit().ProcessEvents();
        ::Sleep(1);
    }
    return true;
}

void WaitFor(int milliseconds) {
    const ULONGLONG end = ::GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    Wait([=] { return ::GetTickCount64() >= end; });
}

void Soon(const std::function<void()>& action, int milliseconds) {
    const UINT_PTR timer =
        ::SetTimer(nullptr, 0, static_cast<UINT>(milliseconds), [](HWND, UINT, UINT_PTR id, DWORD) CALLBACK {
            ::KillTimer(nullptr, id);
            const auto due = Actions().extract(id);
            if (!due.empty()) due.mapped()();
        });
    Actions()[timer] = action;
}

bool OnScreen(const std::string& window) {
    return WindowNamed(window) != nullptr;
}
bool WaitActive(const std::string& window) {
    return Wait([=] { return OnScreen(window) && State().hwndActive == WindowNamed(window); });
}
void CloseWindow(const std::string& window) {
    Send(WindowNamed(window), WM_SYSCOMMAND, SC_CLOSE);
}
bool HeldUp(const std::string& window) {
    return !::IsWindowEnabled(WindowNamed(window));
}

std::string TextOf(const Spot& spot) {
    HWND control = Find(spot);
    const std::wstring text = Shown(control);
    const bool plain =
        ClassOf(control) == L"Edit" ||
        (ClassOf(control) == L"Static" && (::GetWindowLongPtrW(control, GWL_STYLE) & SS_NOPREFIX) != 0);
    return Utf8(plain ? text : WithoutMnemonic(text));
}
bool IsEnabled(const Spot& spot) {
    return ::IsWindowEnabled(Find(spot)) != FALSE;
}
bool IsTicked(const Spot& spot) {
    return Send(Find(spot), BM_GETCHECK) == BST_CHECKED;
}

std::vector<std::string> RowsOf(const Spot& spot) {
    HWND list = Find(spot);
    const bool combo = ClassOf(list) == L"ComboBox";
    const LRESULT count = Send(list, combo ? CB_GETCOUNT : LB_GETCOUNT);
    std::vector<std::string> rows;
    for (WPARAM row = 0; static_cast<LRESULT>(row) < count; ++row) {
        std::wstring text(static_cast<std::size_t>(Send(list, combo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, row)),
                          L'\0');
        Send(list, combo ? CB_GETLBTEXT : LB_GETTEXT, row, reinterpret_cast<LPARAM>(text.data()));
        rows.push_back(Utf8(text));
    }
    return rows;
}

std::string SelectedOf(const Spot& spot) {
    const LRESULT place = Send(Find(spot), LB_GETCURSEL);
    return place < 0 ? "" : RowsOf(spot)[static_cast<std::size_t>(place)];
}

std::vector<std::string> NodesOf(const Spot& spot) {
    std::vector<std::string> lines;
    for (const Node& node : Nodes(Find(spot)))
        lines.push_back(std::string(node.depth, ' ') + Utf8(node.text));
    return lines;
}

int BarOf(const Spot& spot) {
    return static_cast<int>(Send(Find(spot), PBM_GETPOS));
}

std::string Focused() {
    std::wstring name;
    ::EnumPropsExW(
        State().hwndFocus,
        [](HWND window, wchar_t* property, HANDLE value, ULONG_PTR found) CALLBACK -> BOOL {
            const bool text = (reinterpret_cast<ULONG_PTR>(property) >> 16) != 0;  // not a number
            if (text && value == window) *reinterpret_cast<std::wstring*>(found) = property;
            return TRUE;
        },
        Pointer(name));
    return Utf8(name);
}

void Focus(const Spot& spot) {
    Send(WindowNamed(spot.window), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Find(spot)), TRUE);
}

void Click(const Spot& button) {
    HWND window = Find(button);
    ASSERT_TRUE(::IsWindowEnabled(window)) << button.control;
    if (ClassOf(window) == L"Edit") {
        Send(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
        Send(window, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
    } else if (driven == 0) {
        Send(window, BM_CLICK);
    } else {
        ::PostMessageW(window, BM_CLICK, 0, 0);  // what it opens is driven meanwhile
    }
}

void Type(const Spot& spot, TextView text) {
    HWND box = Find(spot);
    Send(box, EM_SETSEL, 0, -1);
    for (const char16_t letter : text) Send(box, WM_CHAR, letter, 1);
}

void DoubleClickRow(const Spot& list, int row) {
    HWND window = Find(list);
    RECT place{};
    ::GetClientRect(window, &place);
    place.top = place.bottom - 4;
    if (row >= 0) Send(window, LB_GETITEMRECT, static_cast<WPARAM>(row), Pointer(place));
    DoubleClick(window, MAKELPARAM(place.left + 4, (place.top + place.bottom) / 2));
}

void ClickTitle(const Spot& list, int column) {
    const auto header = reinterpret_cast<HWND>(Send(Find(list), LVM_GETHEADER));
    RECT place{};
    Send(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), Pointer(place));
    const LPARAM at = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    Send(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
    Send(header, WM_LBUTTONUP, 0, at);
}

void ChooseNode(const Spot& tree, TextView text) {
    Choose(Find(tree), text);
}

void DoubleClickNode(const Spot& tree, TextView text) {
    HWND window = Find(tree);
    RECT place{};
    const HTREEITEM node = Choose(window, text);
    std::memcpy(&place, &node, sizeof node);  // the message reads it there
    Send(window, TVM_GETITEMRECT, TRUE, Pointer(place));
    DoubleClick(window, MAKELPARAM(place.left + 4, (place.top + place.bottom) / 2));
}

void Press(Key key) {
    static const std::map<Key, WPARAM> kCodes = {{Key::Tab, VK_TAB},       {Key::Enter, VK_RETURN},
                                                 {Key::Escape, VK_ESCAPE}, {Key::Up, VK_UP},
                                                 {Key::Down, VK_DOWN},     {Key::F5, VK_F5}};
    ::PostMessageW(State().hwndFocus, WM_KEYDOWN, kCodes.at(key), 1);
    ::PostMessageW(State().hwndFocus, WM_KEYUP, kCodes.at(key), 1 | 1 << 30);
    CurrentToolkit().ProcessEvents();
}

void PressAlt(char16_t letter) {
    constexpr LPARAM kWithAlt = 1 | 1 << 29;
    ::PostMessageW(State().hwndFocus, WM_SYSCHAR, letter, kWithAlt);
    CurrentToolkit().ProcessEvents();
}

std::optional<BoxSeen> BoxOnScreen() {
    HWND box = Box();
    if (box == nullptr) return std::nullopt;
    constexpr int kText = 0xFFFF;
    return BoxSeen{Utf8(Shown(box)), Utf8(Shown(::GetDlgItem(box, kText)))};
}

void CloseBox() {
    ::PostMessageW(Box(), WM_COMMAND, IDOK, 0);
}

}  // namespace tav::test
