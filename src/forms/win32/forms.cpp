// The toolkit of Windows: linked in, always there.
#include "forms/forms.h"

#include <shlobj.h>

#include "forms/win32/form_window.h"
#include "forms/win32/message_loop.h"
#include "forms/win32/shown_forms.h"
#include "forms/win32/theme.h"
#include "platform/floating_point_windows.h"

namespace tav {
namespace {

bool used = false;

// The folder's dialog lives on OLE. A host has it on its thread already; then this only counts.
class ScopedOle {
 public:
    ScopedOle() : begun_(SUCCEEDED(::OleInitialize(nullptr))) {}
    ~ScopedOle() {
        if (begun_) ::OleUninitialize();
    }
    ScopedOle(const ScopedOle&) = delete;
    ScopedOle& operator=(const ScopedOle&) = delete;

 private:
    const bool begun_;
};

int CALLBACK OnBrowse(HWND dialog, UINT message, LPARAM, LPARAM start) {
    const win32::OwnFloatingPoint own;
    if (message == BFFM_INITIALIZED) ::SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, start);
    return 0;
}

// A box is as high as its text. The beginning of a long one says what it is about, and often its end why.
std::wstring Shortened(TextView text) {
    constexpr std::size_t kHalf = 2000;
    if (text.size() <= 2 * kHalf) return win32::Wide(text);
    return win32::Wide(text.substr(0, kHalf)) + L" \x2026 " + win32::Wide(text.substr(text.size() - kHalf));
}

class ToolkitWin : public Toolkit {
 public:
    OwnedWindow Create(const FormPlan& plan, FormEvents& events) override {
        auto* form = new FormWindowWin(plan, events);
        OwnedWindow window(form);
        form->Make();
        return window;
    }

    // Without an owner, the box holds up all windows of the thread.
    void ShowMessage(const Message& message) override {
        const ScopedTheme theme;
        const FormWindowWin* active = ActiveForm();
        const UINT icon = message.icon == MessageIcon::Critical ? MB_ICONERROR : MB_ICONINFORMATION;
        ::MessageBoxW(active == nullptr ? nullptr : active->hwnd(), Shortened(message.text).c_str(),
                      win32::Wide(message.title).c_str(),
                      MB_OK | icon | (active == nullptr ? MB_TASKMODAL | MB_SETFOREGROUND : 0));
    }

    Text BrowseFolder(TextView title, TextView start, FormWindow* owner) override {
        const ScopedTheme theme;
        const ScopedOle ole;
        const std::wstring shown = win32::Wide(title);
        const std::wstring first = win32::Wide(start);
        BROWSEINFOW browse{};
        browse.hwndOwner = WindowOf(owner);
        browse.lpszTitle = shown.c_str();
        browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
        browse.lpfn = OnBrowse;
        browse.lParam = reinterpret_cast<LPARAM>(first.c_str());
        PIDLIST_ABSOLUTE chosen = ::SHBrowseForFolderW(&browse);
        wchar_t* path = nullptr;  // of any length
        if (chosen != nullptr) ::SHGetNameFromIDList(chosen, SIGDN_FILESYSPATH, &path);
        ::CoTaskMemFree(chosen);
        const std::unique_ptr<wchar_t, decltype(&::CoTaskMemFree)> owned(path, ::CoTaskMemFree);
        return path == nullptr ? Text() : win32::FromWide(path);
    }

    bool ProcessEvents() override { return HandleWaiting(); }
    void RunUntilClosed() override { RunUntilNoFormIsShown(); }
};

}  // namespace

Toolkit& CurrentToolkit() {
    static ToolkitWin& toolkit = *new ToolkitWin;
    used = true;
    return toolkit;
}

bool ToolkitLoaded() {
    return used;
}

}  // namespace tav
