// Windows-1251 at the border of libxml2, by a table of this project: the library would
// ask the system's converters, which not every system has and which refuse byte 0x98.
#pragma once

#include <string>
#include <string_view>

namespace tav {

// Whether the XML declaration at the head of these bytes names Windows-1251.
bool DeclaresWindows1251(std::string_view document);

// Windows-1251 bytes as UTF-8.
std::string Utf8FromWindows1251(std::string_view bytes);
// UTF-8 mark-up as Windows-1251 with CR LF line ends; what the code page lacks becomes "&#N;".
std::string Windows1251Markup(std::string_view utf8);

}  // namespace tav
