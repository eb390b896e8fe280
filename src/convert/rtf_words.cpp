#include "convert/rtf_words.h"

#include <algorithm>
#include <stdexcept>

#include "convert/characters.h"

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

constexpr std::uint64_t Packed(std::string_view name) {
    std::uint64_t letters = 0;
    for (std::size_t i = 0; i < std::min(name.size(), rtf_words::kPacked); ++i) {
        letters |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    return letters;
}

}  // namespace

constexpr std::array<rtf_words::PackedWord, std::size_t{1} << rtf_words::kSlotBits> rtf_words::kSlots = [] {
    std::array<PackedWord, std::size_t{1} << kSlotBits> slots{};
    for (const RtfWord& word : kWords) {
        PackedWord& slot = slots[Slot(Packed(word.name))];
        if (slot.letters != 0) throw std::logic_error("two words share a slot");
        slot = {Packed(word.name), word};
    }
    return slots;
}();

constexpr RtfWord rtf_words::kUnknown{};

const RtfWord& rtf_words::TakeLong(std::uint64_t letters, const char*& at, const char* end) {
    const char* const name = at;
    at += kPacked;
    while (at != end && IsLetter(*at)) ++at;
    const RtfWord& word = kSlots[Slot(letters)].word;
    return word.name == std::string_view(name, static_cast<std::size_t>(at - name)) ? word : kUnknown;
}

}  // namespace tav
