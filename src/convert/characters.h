// What the readers of documents and of the catalogue share of their bytes: ASCII letters and digits, the line end of
// both, and the control words that begin a document's frames and its pages.
#pragma once

#include <string_view>

namespace tav {

inline constexpr std::string_view kLineEnd = "\r\n";
inline constexpr std::string_view kFrame = "\\posx";
inline constexpr std::string_view kPage = "\\page";

constexpr bool IsLetter(char c) {
    return static_cast<unsigned char>((c | 0x20) - 'a') < 26;
}
constexpr bool IsDigit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}

}  // namespace tav
