// The mark-up of the catalogue: its own tags and XML's entities, everything else is text.
//
// What the writers put into the catalogue stays raw, so a value may hold any "&" and "<". A "<" is
// mark-up only as the beginning of one of the catalogue's own tags, an "&" only as the beginning of an
// entity:
//
//   <all> <actual> <item> <file> <name> <part> <head> <body> <row> <perb> <pere>, <h01> and <p01> to <p0001>
//   with their closing tags, each with white space after the name or the attribute `type` at most
//   &amp; &lt; &gt; &quot; &apos; and references to characters by number
//
// Bytes are Windows-1251, or any other extension of ASCII by single bytes.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/text.h"

namespace tav {

struct MarkupTag {
    std::string_view name;  // empty: there is none
    std::size_t begin = 0;  // at its "<"
    std::size_t end = 0;    // after its ">"
    bool closes = false;    // </head>
    bool is_whole = false;  // <head/>
};

// The tag that begins exactly at `at`; one without a name when none does.
MarkupTag TagAt(std::string_view text, std::size_t at);
// The first tag at or after `at`.
MarkupTag NextTag(std::string_view text, std::size_t at);

// What stands between two tags as text: its entities replaced; a line end is one line feed, and a character
// that XML does not have is "?".
Text TextBetweenTags(std::string_view markup);

}  // namespace tav
