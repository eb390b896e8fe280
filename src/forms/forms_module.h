// The border between the loader of the forms module (forms_linux.cpp) and the module: one function with C
// linkage, `tav_make_toolkit`. Both sides are built by one compiler from the same headers.
#pragma once

#include "forms/forms.h"

namespace tav {

// Null when windows cannot be shown; `why` then says the reason in a person's words. May be asked again. The
// toolkit lives as long as the process.
using MakeToolkit = Toolkit*(Text& why);

constexpr char kMakeToolkit[] = "tav_make_toolkit";

}  // namespace tav
