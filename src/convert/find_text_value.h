// A small decoder for the source of the statements that the tax service sends: from raw RTF groups to the
// text that a person reads. It knows only the escapes of these documents and works by replacing them.
// What the catalogue holds is read by rich_text.h; this one is for looking at single frames.
//
// In: the bytes of an RTF, where a byte is a character of Windows-1251. Out:
// Windows-1251 bytes. Positions count from 1; 0 says that nothing (more) was
// found. Whatever the bytes, the work grows with their number only.
//
// Failures, each in a message box of its own, after which goes on what can go on: a position below 0 and a
// group without any backslash that gave no text are "Invalid procedure call or argument", a position that
// needs more than 32 bits is "Overflow".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tav {

// The text of the group that begins at `pos`, and of the groups that follow it without a gap ("}{"). A group
// ends at the next closing brace; `pos` moves past the last one, or becomes 0 when one is missing.
//
// Decoded are \'b9 to \'ff in lower-case digits, and \u1001 to \u1103 and \u8470 with a fallback of that
// kind; no-break spaces vanish, a "\_" anywhere puts one "-" before everything. Any other escape ends the run
// that it stands in. Failures: "Ошибка в функции FindTextValue".
std::string FindTextValue(std::int32_t& pos, std::string_view text);

// The same for a caller that shows nothing: a group that fails has no text.
std::string FindTextValueQuietly(std::int32_t& pos, std::string_view text);

// What stands between the control word `key`, searched from `pos` on, and the next backslash or the end of
// the text. The key has no backslash, but the space that ends it ("cf1 "); letter case counts. `pos` moves to
// that backslash, or just after the key when there is none, or becomes 0 when the key is missing.
// Failures: "Ошибка в функции getbase", which is the title on purpose.
std::string GetKeyValue(std::int32_t& pos, std::string_view text, std::string_view key);

}  // namespace tav
