#include "forms/win32/theme.h"

namespace tav {
namespace {

constexpr int kManifest = 2;

// INVALID_HANDLE_VALUE when the module has no manifest.
// Kept for the life of the process: windows refer to it.
HANDLE MakeContext() {
    const std::wstring module = win32::ModulePath();
    ACTCTXW context{};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpSource = module.c_str();
    context.hModule = win32::ThisModule();
    context.lpResourceName = MAKEINTRESOURCEW(kManifest);
    return ::CreateActCtxW(&context);
}

}  // namespace

ScopedTheme::ScopedTheme() {
    static const HANDLE context = MakeContext();
    active_ = context != INVALID_HANDLE_VALUE && ::ActivateActCtx(context, &cookie_);
    static const bool registered = [] {
        const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_TREEVIEW_CLASSES |
                                                                 ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS |
                                                                 ICC_BAR_CLASSES};
        return ::InitCommonControlsEx(&controls) != FALSE;
    }();
    static_cast<void>(registered);  // a class that is missing shows when its window is created
}

ScopedTheme::~ScopedTheme() {
    if (active_) ::DeactivateActCtx(0, cookie_);
}

}  // namespace tav
