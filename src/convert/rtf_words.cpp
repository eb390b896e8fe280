#include "convert/rtf_words.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace tav {
namespace {

constexpr RtfWord kWords[] = {
    {"par", RtfAction::Break},
    {"sect", RtfAction::Break},
    {"page", RtfAction::Break},
    {"intbl", RtfAction::InRow},
    {"cell", RtfAction::Cell},
    {"nestcell", RtfAction::Character, '\t'},
    {"row", RtfAction::Row},
    {"tab", RtfAction::Character, '\t'},
    {"line", RtfAction::Character, ' '},
    {"emspace", RtfAction::Character, ' '},
    {"enspace", RtfAction::Character, ' '},
    {"qmspace", RtfAction::Character, ' '},
    {"emdash", RtfAction::Character, '\x97'},
    {"endash", RtfAction::Character, '\x96'},
    {"bullet", RtfAction::Character, '\x95'},
    {"lquote", RtfAction::Character, '\x91'},
    {"rquote", RtfAction::Character, '\x92'},
    {"ldblquote", RtfAction::Character, '\x93'},
    {"rdblquote", RtfAction::Character, '\x94'},
    {"u", RtfAction::Unicode},
    {"uc", RtfAction::UnicodeSkip},
    {"bin", RtfAction::Binary},
    {"pict", RtfAction::Drop},
    {"shp", RtfAction::Drop},
    {"sp", RtfAction::Drop},
    {"header", RtfAction::Drop},
    {"headerf", RtfAction::Drop},
    {"headerl", RtfAction::Drop},
    {"headerr", RtfAction::Drop},
    {"footer", RtfAction::Drop},
    {"footerf", RtfAction::Drop},
    {"footerl", RtfAction::Drop},
    {"footerr", RtfAction::Drop},
    {"footnote", RtfAction::Drop},
    {"pntext", RtfAction::Drop},
    {"fldinst", RtfAction::Drop},
    {"colortbl", RtfAction::Drop},
    {"stylesheet", RtfAction::Drop},
    {"info", RtfAction::Drop},
    {"fonttbl", RtfAction::FontTable},
    {"f", RtfAction::Font},
    {"fcharset", RtfAction::FontCharset},
    {"cpg", RtfAction::FontCodePage},
    {"plain", RtfAction::Plain},
    {"deff", RtfAction::DefaultFont},
    {"ansicpg", RtfAction::CodePage},
};

constexpr std::size_t kPacked = sizeof(std::uint64_t);

// The first eight letters of a word, the first one in the lowest byte. Shorter words end with zeros.
constexpr std::uint64_t Packed(std::string_view name) {
    std::uint64_t letters = 0;
    for (std::size_t i = 0; i < std::min(name.size(), kPacked); ++i) {
        letters |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    return letters;
}

// With this factor no two words above share a slot: found by trial, kept true by the compiler below.
constexpr int kSlotBits = 7;
constexpr std::size_t Slot(std::uint64_t letters) {
    return (letters * 0x9BA5BD8042CBA081) >> (64 - kSlotBits);
}

struct PackedWord {
    std::uint64_t letters = 0;
    RtfWord word;
};

constexpr auto kSlots = [] {
    std::array<PackedWord, std::size_t{1} << kSlotBits> slots{};
    for (const RtfWord& word : kWords) {
        PackedWord& slot = slots[Slot(Packed(word.name))];
        if (slot.letters != 0) throw std::logic_error("two words share a slot");
        slot = {Packed(word.name), word};
    }
    return slots;
}();

constexpr RtfWord kUnknown{};

constexpr std::uint64_t Everywhere(unsigned char byte) {
    return byte * std::uint64_t{0x0101010101010101};
}

// How many of the eight bytes, from the lowest on, are letters of either case. The sums have a byte's highest bit
// set where its lower seven, as a small letter, are at least 'a', or beyond 'z'; bytes from 0x80 on are no letters.
int LettersAhead(std::uint64_t bytes) {
    const std::uint64_t small = (bytes | Everywhere(0x20)) & Everywhere(0x7F);
    const std::uint64_t from_a = small + Everywhere(0x80 - 'a');
    const std::uint64_t beyond_z = small + Everywhere(0x7F - 'z');
    const std::uint64_t letters = (from_a ^ beyond_z) & ~bytes & Everywhere(0x80);
    return std::countr_zero(letters ^ Everywhere(0x80)) / 8;
}

bool IsLetter(char c) {
    return static_cast<unsigned char>((c | 0x20) - 'a') < 26;
}

}  // namespace

const RtfWord& TakeRtfWord(const char*& at, const char* end) {
    static_assert(std::endian::native == std::endian::little);
    const char* const name = at;
    const auto left = static_cast<std::size_t>(end - at);
    std::uint64_t letters = 0;
    if (left >= kPacked) {
        std::memcpy(&letters, at, kPacked);
    } else {
        std::memcpy(&letters, at, left);
    }
    const int length = LettersAhead(letters);
    at += length;
    if (length < static_cast<int>(kPacked)) {
        letters &= (std::uint64_t{1} << (8 * length)) - 1;
        const PackedWord& slot = kSlots[Slot(letters)];
        return slot.letters == letters ? slot.word : kUnknown;
    }
    while (at != end && IsLetter(*at)) ++at;
    const PackedWord& slot = kSlots[Slot(letters)];
    return slot.word.name == std::string_view(name, static_cast<std::size_t>(at - name)) ? slot.word
                                                                                         : kUnknown;
}

}  // namespace tav
