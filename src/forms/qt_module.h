// The module that has what is made with Qt: windows and PDFs. It is loaded when the first of its functions is
// asked for.
#pragma once

#include "common/text.h"

namespace tav {

// The address of a function with C linkage. Without it null, and `why` says the reason.
void* QtModuleFunction(const char* name, Text& why);

}  // namespace tav
