#include "convert/rtf_words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
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

constexpr std::size_t kSlots = 256;

// With these factors no two words above share a slot: found by trial, kept true by the compiler below.
constexpr std::size_t Slot(std::string_view name) {
    const std::size_t last = name.size() - 1;
    const auto letter = [&](std::size_t at) -> std::size_t { return static_cast<unsigned char>(name[at]); };
    return (letter(0) * 37 + letter(std::min<std::size_t>(1, last)) * 7 +
            letter(std::min<std::size_t>(2, last)) * 46 + letter(last) * 42 + last) %
           kSlots;
}

// The number of the slot's word, counting from 1; 0 for most slots, so that most unknown words are told by
// one look into these few bytes.
constexpr auto kSlotWords = [] {
    std::array<std::uint8_t, kSlots> words{};
    for (std::size_t i = 0; i < std::size(kWords); ++i) {
        std::uint8_t& slot = words[Slot(kWords[i].name)];
        if (slot != 0) throw std::logic_error("two words share a slot");
        slot = static_cast<std::uint8_t>(i + 1);
    }
    return words;
}();

constexpr RtfWord kUnknown{};

}  // namespace

const RtfWord& FindRtfWord(std::string_view name) {
    const std::uint8_t number = kSlotWords[Slot(name)];
    return number != 0 && kWords[number - 1].name == name ? kWords[number - 1] : kUnknown;
}

}  // namespace tav
