// Which field of a printed form a frame belongs to: its horizontal position in twips decides.
//
// In the pages' plain text a positioned frame's line begins with "posx" and the position. Known positions
// become the tags that the line reader knows; a position that is not known becomes "##|" with its digits left
// behind the tag.
#pragma once

#include <string>
#include <string_view>

namespace tav {

struct CellPosition {
    std::string_view frame;
    std::string_view tag;
};

// The table in the order in which it is defined to apply: one replacement of every occurrence after the
// other, over the whole text.
extern const CellPosition kCellPositions[27];

// What those replacements make of the text, in one pass. No frame text begins with another one, and no tag
// can become part of a frame text, so each "posx" is decided by the digits that follow it alone.
std::string ReplaceCellPositions(std::string_view text);

}  // namespace tav
