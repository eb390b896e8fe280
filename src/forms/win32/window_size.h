// Sizes and places of windows on their screen.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

// What the window's screen has room for, without the task bar.
RECT WorkArea(HWND window);
// In the middle of the owner, but on the screen.
void Centre(HWND window, HWND owner);
// The size with borders and title of an inside of that size.
SIZE WithBorder(HWND window, SIZE inside);
// As far as the screen goes.
void SetInside(HWND window, SIZE inside);

}  // namespace tav
