// Fonts and lengths on a screen of a given resolution.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

// Dots per inch at which the window is drawn: those of its
// screen where the host sees screens apart, else the system's.
int DpiOf(HWND window);

// The font of the user's message boxes at a resolution, and the lengths that follow from it.
class Metrics {
 public:
    explicit Metrics(int dpi);
    ~Metrics();
    Metrics(Metrics&& other) noexcept;
    Metrics& operator=(Metrics&& other) noexcept;

    HFONT font() const { return font_; }
    int dpi() const { return dpi_; }
    // Of the font, in pixels.
    int character() const { return character_; }
    int line() const { return line_; }
    // Pixels of a length in dialog units, quarters of a character and eighths of a line.
    int Across(int units) const { return ::MulDiv(units, character_, 4); }
    int Down(int units) const { return ::MulDiv(units, line_, 8); }
    // Pixels of a length that is `at_96` pixels at 96 dots per inch.
    int Scaled(int at_96) const { return ::MulDiv(at_96, dpi_, 96); }
    // How large a text is, its lines broken at `width` unless that is 0; `flags` are DrawText's.
    SIZE TextSize(TextView text, int width, UINT flags) const;

 private:
    HFONT font_;
    int dpi_;
    int character_;
    int line_;
};

// A device context of the screen with a font in it, for measuring.
class ScreenDC {
 public:
    explicit ScreenDC(HFONT font) : dc_(::GetDC(nullptr)), before_(::SelectObject(dc_, font)) {}
    ~ScreenDC() {
        ::SelectObject(dc_, before_);
        ::ReleaseDC(nullptr, dc_);
    }
    ScreenDC(const ScreenDC&) = delete;
    ScreenDC& operator=(const ScreenDC&) = delete;
    HDC get() const { return dc_; }

 private:
    HDC dc_;
    HGDIOBJ before_;
};

}  // namespace tav
