// The control words of RTF that matter for the plain text, and what each of them does.
//
// Names and meanings: Rich Text Format, version 1.9.1, and what a rich-text control makes of them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tav {

enum class RtfAction : std::uint8_t {
    None,         // unknown words: formatting
    Break,        // a line break
    Character,    // one character of text
    InRow,        // the paragraph belongs to a table row
    Cell,         // the end of a table cell
    Row,          // the end of a table row
    Unicode,      // a character by its number
    UnicodeSkip,  // how many items follow it for readers that know no Unicode
    Binary,       // so many raw bytes follow
    Drop,         // the rest of the group is not text
    FontTable,    // neither is this; it gives the fonts' charsets
    Font,
    FontCharset,
    FontCodePage,
    Plain,
    DefaultFont,
    CodePage,
};

struct RtfWord {
    std::string_view name;
    RtfAction action = RtfAction::None;
    char character = 0;  // Windows-1251
};

// How a word is found: by its first eight letters, the first one in the lowest byte; shorter words end with zeros.
namespace rtf_words {

struct PackedWord {
    std::uint64_t letters = 0;
    RtfWord word;
};

constexpr std::size_t kPacked = sizeof(std::uint64_t);

// With this factor no two words share a slot: found by trial, kept true by the compiler where the slots are filled.
constexpr int kSlotBits = 7;
constexpr std::size_t Slot(std::uint64_t letters) {
    return (letters * 0x9BA5BD8042CBA081) >> (64 - kSlotBits);
}

extern const std::array<PackedWord, std::size_t{1} << kSlotBits> kSlots;
extern const RtfWord kUnknown;

constexpr std::uint64_t Everywhere(unsigned char byte) {
    return byte * std::uint64_t{0x0101010101010101};
}

// How many of the eight bytes, from the lowest on, are letters of either case. The sums have a byte's highest bit
// set where its lower seven, as a small letter, are at least 'a', or beyond 'z'; bytes from 0x80 on are no letters.
constexpr std::size_t LettersAhead(std::uint64_t bytes) {
    const std::uint64_t small = (bytes | Everywhere(0x20)) & Everywhere(0x7F);
    const std::uint64_t from_a = small + Everywhere(0x80 - 'a');
    const std::uint64_t beyond_z = small + Everywhere(0x7F - 'z');
    const std::uint64_t letters = (from_a ^ beyond_z) & ~bytes & Everywhere(0x80);
    return static_cast<std::size_t>(std::countr_zero(letters ^ Everywhere(0x80))) / 8;
}

// The same of eight letters or more.
const RtfWord& TakeLong(std::uint64_t letters, const char*& at, const char* end);

}  // namespace rtf_words

// The word whose letters begin at `at`, which moves past them; one with the action None when there is none.
inline const RtfWord& TakeRtfWord(const char*& at, const char* end) {
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t letters = 0;
    if (static_cast<std::size_t>(end - at) >= rtf_words::kPacked) {
        std::memcpy(&letters, at, rtf_words::kPacked);
    } else {
        std::memcpy(&letters, at, static_cast<std::size_t>(end - at));
    }
    const std::size_t length = rtf_words::LettersAhead(letters);
    if (length == rtf_words::kPacked) return rtf_words::TakeLong(letters, at, end);
    at += length;
    letters &= (std::uint64_t{1} << (8 * length)) - 1;
    const rtf_words::PackedWord& slot = rtf_words::kSlots[rtf_words::Slot(letters)];
    return slot.letters == letters ? slot.word : rtf_words::kUnknown;
}

}  // namespace tav
