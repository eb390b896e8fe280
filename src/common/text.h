// The text of the whole system: UTF-16 code units, because its rules count characters ("the first 50
// characters", "the ten characters before the slash").
//
// Bytes become Text at three borders only: Windows-1251 files (windows1251.h), UTF-8 of libraries, the
// terminal and the file system of Linux (here), and UTF-16 at COM.
//
// UTF-8 that is not valid survives the round trip: a byte b that belongs to no character becomes the lone
// surrogate U+DC00 + b and turns into the same byte again. So a path with any bytes in it stays usable.
#pragma once

#include <string>
#include <string_view>

namespace tav {

using Text = std::u16string;
using TextView = std::u16string_view;

Text FromUtf8(std::string_view bytes);
std::string ToUtf8(TextView text);

// Case of one character: Latin, Greek and Cyrillic; every other character is its own case.
char16_t UpperChar(char16_t c);
char16_t LowerChar(char16_t c);
Text UpperCase(TextView text);
Text LowerCase(TextView text);

// Letter case ignored, everything else counts.
bool EqualNoCase(TextView a, TextView b);
// < 0, 0, > 0 by the upper-cased characters.
int CompareNoCase(TextView a, TextView b);

Text ReplaceAll(TextView text, TextView what, TextView with);
// Without outer spaces (U+0020).
TextView Trim(TextView text);
// The last `count` characters, or all of them.
TextView Right(TextView text, std::size_t count);

// A whole number in decimal digits, filled up with zeros to `width`.
Text Digits(long long number, int width = 1);

}  // namespace tav
