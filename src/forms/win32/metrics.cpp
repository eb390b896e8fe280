#include "forms/win32/metrics.h"

namespace tav {
namespace {

// Functions of newer systems are looked up, so that older ones load the module.
template <class Function>
Function* FromUser32(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"user32"), name)));
}

int SystemDpi() {
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

LOGFONTW MessageFont(int dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    using ForDpi = BOOL WINAPI(UINT, UINT, void*, UINT, UINT);
    static ForDpi* const for_dpi = FromUser32<ForDpi>("SystemParametersInfoForDpi");
    if (for_dpi != nullptr &&
        for_dpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi))) {
        return metrics.lfMessageFont;
    }
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = ::MulDiv(metrics.lfMessageFont.lfHeight, dpi, SystemDpi());
    return metrics.lfMessageFont;
}

}  // namespace

int DpiOf(HWND window) {
    using ForWindow = UINT WINAPI(HWND);
    static ForWindow* const for_window = FromUser32<ForWindow>("GetDpiForWindow");
    const UINT dpi = for_window == nullptr ? 0 : for_window(window);
    return dpi == 0 ? SystemDpi() : static_cast<int>(dpi);
}

Metrics::Metrics(int dpi) : dpi_(dpi) {
    const LOGFONTW font = MessageFont(dpi);
    font_ = ::CreateFontIndirectW(&font);
    const ScreenDC screen(font_);
    TEXTMETRICW measured{};
    ::GetTextMetricsW(screen.get(), &measured);
    character_ = static_cast<int>(measured.tmAveCharWidth);
    line_ = static_cast<int>(measured.tmHeight);
}

Metrics::~Metrics() {
    if (font_ != nullptr) ::DeleteObject(font_);
}

Metrics::Metrics(Metrics&& other) noexcept
    : font_(std::exchange(other.font_, nullptr)),
      dpi_(other.dpi_),
      character_(other.character_),
      line_(other.line_) {}

Metrics& Metrics::operator=(Metrics&& other) noexcept {
    std::swap(font_, other.font_);
    dpi_ = other.dpi_;
    character_ = other.character_;
    line_ = other.line_;
    return *this;
}

SIZE Metrics::TextSize(TextView text, int width, UINT flags) const {
    const ScreenDC screen(font_);
    const std::wstring wide = win32::Wide(text);
    RECT box{0, 0, width, 0};
    ::DrawTextW(screen.get(), wide.c_str(), static_cast<int>(wide.size()), &box, flags | DT_CALCRECT);
    return {box.right, box.bottom};
}

}  // namespace tav
