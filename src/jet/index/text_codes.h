// How the database orders text: the code of each character in the sort order 1033 (0x0409), version 0. Keys of
// indexes are made of these codes, and texts are compared by them.
//
// Only codes that were read from keys made by the database's own program are here: ASCII, the Russian letters,
// and the signs of Russian documents. A character that is not in the table has no known code, and a text with
// one has no key; nothing is interpolated.
#pragma once

#include <cstdint>
#include <optional>

namespace tav::jet {

inline constexpr std::uint16_t kCodedSortOrder = 0x0409;
inline constexpr std::uint8_t kCodedSortVersion = 0;

struct TextCode {
    std::uint16_t code = 0;    // one byte, or two when above 0xFF; letter case makes no difference
    std::uint8_t special = 0;  // apostrophe, hyphen and dashes: no code, but this byte at the key's end
    std::uint8_t accent = 0;   // a letter with a mark: what goes into the key's block of accents
};

// No value when the character's code is not known.
std::optional<TextCode> FindTextCode(char16_t character);

}  // namespace tav::jet
