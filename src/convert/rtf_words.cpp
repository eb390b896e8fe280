#include "convert/rtf_words.h"

#include <array>
#include <cstddef>
#include <stdexcept>

namespace tav {
namespace {

constexpr RtfWord kWords[] = {
    {"par", RtfAction::Paragraph},
    {"sect", RtfAction::Break},
    {"page", RtfAction::Break},
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

// With this factor no two words above share a slot: found by trial, kept true by the compiler below.
constexpr std::uint32_t kFactor = 29;

constexpr std::size_t Slot(std::string_view name) {
    std::uint32_t hash = 0;
    for (const char letter : name) hash = hash * kFactor + static_cast<unsigned char>(letter);
    return (hash >> 4 ^ hash) % kSlots;
}

constexpr auto kTable = [] {
    std::array<RtfWord, kSlots> table{};
    for (const RtfWord& word : kWords) {
        RtfWord& slot = table[Slot(word.name)];
        if (!slot.name.empty()) throw std::logic_error("two words share a slot");
        slot = word;
    }
    return table;
}();

constexpr RtfWord kUnknown{};

}  // namespace

const RtfWord& FindRtfWord(std::string_view name) {
    const RtfWord& word = kTable[Slot(name)];
    return word.name == name ? word : kUnknown;
}

}  // namespace tav
