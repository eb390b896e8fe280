// Windows-1251, the code page of every file the component reads and writes: a byte is a character.
#pragma once

#include <string>
#include <string_view>

#include "common/text.h"

namespace tav {

// The character of a byte. Byte 0x98, which the code page leaves open, is U+0098.
char16_t FromWindows1251(unsigned char byte);
Text FromWindows1251(std::string_view bytes);

// The byte of a character. What the code page lacks becomes the best fit: hyphens and the minus sign
// (U+2010, U+2011, U+2212) "-", the spaces of typography (U+2000 to U+200A, U+202F) a space, others "?".
char ToWindows1251(char16_t c);
std::string ToWindows1251(TextView text);

// Whether the code page has every character of the text itself, without a best fit.
bool IsWindows1251(TextView text);

}  // namespace tav
