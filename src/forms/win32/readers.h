// Names of controls for programs that read windows out: the system's own customs (a window's text, a label
// right before it) give some controls no name and others "...".
#pragma once

#include <utility>
#include <vector>

#include "common/text.h"
#include "platform/win32_windows.h"

namespace tav {

using ReaderNames = std::vector<std::pair<HWND, TextView>>;

// Annotates the windows for the system's accessibility services; without those nothing happens.
void TellReaders(const ReaderNames& names);
// Before the windows go: the system keeps annotations for handles.
void ForgetReaders(const ReaderNames& names);

}  // namespace tav
