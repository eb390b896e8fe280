#include "forms/win32/shown_forms.h"

#include <mutex>
#include <set>

#include "forms/win32/form_window.h"
#include "forms/win32/message_loop.h"
#include "platform/border_windows.h"

namespace tav {
namespace {

struct Forms {
    std::mutex guard;  // of what other threads ask for as well: those that were made
    std::set<FormWindowWin*> made;
    std::set<FormWindowWin*> shown;
    HHOOK hook = nullptr;
};

// Outlives every window, also those that end with the process.
Forms& All() {
    static Forms& forms = *new Forms;
    return forms;
}

// A key that a form has used up reaches the host's loop as a message that means nothing.
LRESULT CALLBACK OnMessageTaken(int code, WPARAM removed, LPARAM taken) {
    return win32::AtBorder([&] {
        auto& message = *reinterpret_cast<MSG*>(taken);
        if (code == HC_ACTION && (removed & PM_REMOVE) != 0 && message.message >= WM_KEYFIRST &&
            message.message <= WM_KEYLAST) {
            FormWindowWin* form = FormOf(::GetAncestor(message.hwnd, GA_ROOT));
            if (form != nullptr && form->TakeKey(message)) message = MSG{};
        }
        return ::CallNextHookEx(nullptr, code, removed, taken);
    });
}

bool IsOurs(HWND window) {
    return win32::ClassOf(window) == kFormClass &&
           ::GetWindowLongPtrW(window, GWLP_HINSTANCE) == reinterpret_cast<LONG_PTR>(win32::ThisModule());
}

}  // namespace

int OpenForms() {
    const std::lock_guard lock(All().guard);
    return static_cast<int>(
        std::ranges::count_if(All().made, [](const FormWindowWin* form) { return form->Exists(); }));
}

bool HasForms(DWORD thread) {
    return std::ranges::any_of(win32::ThreadWindows(thread), IsOurs);
}

std::vector<Text> FormCaptions(DWORD thread, bool on_screen) {
    std::vector<Text> captions;
    for (HWND window : win32::ThreadWindows(thread)) {
        wchar_t caption[256] = L"";
        if (!IsOurs(window) || (::IsWindowVisible(window) != FALSE) != on_screen) continue;
        const int length = ::InternalGetWindowText(window, caption, static_cast<int>(std::size(caption)));
        captions.push_back(win32::FromWide({caption, static_cast<std::size_t>(length)}));
    }
    return captions;
}

void FormMade(FormWindowWin* form) {
    for (FormWindowWin* other : All().made) other->ForgetIfLost();
    const std::lock_guard lock(All().guard);
    All().made.insert(form);
}

void FormGone(FormWindowWin* form) {
    FormHidden(form);
    const std::lock_guard lock(All().guard);
    All().made.erase(form);
}

FormWindowWin* FormOf(HWND window) {
    for (FormWindowWin* form : All().made) {
        if (window != nullptr && form->hwnd() == window) return form;
    }
    return nullptr;
}

FormWindowWin* ActiveForm() {
    return FormOf(::GetActiveWindow());
}

void FormShown(FormWindowWin* form) {
    All().shown.insert(form);
    if (All().hook != nullptr) return;
    All().hook = ::SetWindowsHookExW(WH_GETMESSAGE, OnMessageTaken, nullptr, ::GetCurrentThreadId());
}

void FormHidden(FormWindowWin* form) {
    if (All().shown.erase(form) == 0 || !All().shown.empty()) return;
    if (HHOOK hook = std::exchange(All().hook, nullptr); hook != nullptr) ::UnhookWindowsHookEx(hook);
    WakeLoop();
}

void RunUntilNoFormIsShown() {
    RunLoopUntil([] { return All().shown.empty(); });
}

}  // namespace tav
