// The scroll bars of a window whose contents are larger than it.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

class ScrollBars {
 public:
    // Shows or hides the bars, which changes how much the window has room for.
    void Fit(HWND window, SIZE contents);
    // A message of a bar or of the mouse's wheel, `line` pixels at a time; whether the contents move.
    bool OnMessage(HWND window, UINT message, WPARAM wparam, int line);
    // So far that a box of the window is seen; whether the contents move.
    bool Reveal(HWND window, const RECT& box);
    // How far the contents stand out of the window on the left and above.
    POINT at() const { return at_; }

 private:
    void Fit(HWND window, int bar, int contents, int room, LONG& at);
    bool MoveTo(HWND window, int bar, int position);

    POINT at_{};
};

}  // namespace tav
