// The common controls in their themed version, also in a host whose own manifest does not ask for it.
//
// The manifest is a resource of the module that holds this code (common_controls.manifest, resource 2). A
// module without it gets the version that the process has, and everything works all the same.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

// While it lives, windows that are created are themed. Also registers the classes of the common controls.
class ScopedTheme {
 public:
    ScopedTheme();
    ~ScopedTheme();
    ScopedTheme(const ScopedTheme&) = delete;
    ScopedTheme& operator=(const ScopedTheme&) = delete;

 private:
    ULONG_PTR cookie_ = 0;
    bool active_;
};

}  // namespace tav
