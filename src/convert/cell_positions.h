// Which field of a printed form a frame belongs to: its horizontal position in twips decides.
//
// In the pages' plain text a positioned frame's line begins with "posx" and the
// position. Known positions become the tags that the line reader knows; a
// position that is not known becomes "##|" with its digits left after the tag.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tav {

struct CellPosition {
    std::size_t twips;
    std::string_view tag;
};

// The table in the order in which it is defined to apply: every "posx" with these digits after it is
// replaced over the whole text, then the next line's; at last every "posx" left becomes "##|".
extern const CellPosition kCellPositions[26];

// What those replacements make of the text, in one pass. No position's digits begin with another's, and no
// tag can become part of a "posx", so each "posx" is decided by the digits that follow it alone.
std::string ReplaceCellPositions(std::string_view text);
// The same, appended to `out`.
void AppendWithTags(std::string& out, std::string_view text);

}  // namespace tav
