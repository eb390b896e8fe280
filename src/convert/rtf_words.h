// The control words of RTF that matter for the plain text, and what each of them does.
//
// Names and meanings: Rich Text Format, version 1.9.1, and what a rich-text control makes of them.
#pragma once

#include <cstdint>
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

// The word whose letters begin at `at`, which moves past them; one with the action None when there is none.
const RtfWord& TakeRtfWord(const char*& at, const char* end);

}  // namespace tav
