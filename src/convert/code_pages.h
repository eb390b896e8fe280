// What the bytes of an RTF mean: each code page as a map from its bytes to Windows-1251 bytes.
//
// An RTF names code pages in two ways: by number (\ansicpg1251, \cpg866) and by a font's charset
// (\fcharset204). Characters that Windows-1251 lacks are "?" in a map. A byte that stands for no character of
// a text (the control characters but TAB) is 0.
//
// Code page contents: the mapping tables that the Unicode Consortium publishes for vendors' code pages.
#pragma once

#include <array>
#include <cstdint>

namespace tav {

using ByteMap = std::array<char, 256>;

// Windows-1251 itself for a code page that is not known.
const ByteMap& MapOfCodePage(std::int32_t code_page);

// The code page of a font's charset; 0 for charsets that leave it to the document (1) or are not known.
std::int32_t CodePageOfCharset(std::int32_t charset);

}  // namespace tav
