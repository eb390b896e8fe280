// What a folder's listing and the catalogue's names have to do with each other.
//
// The comparison works on one text: CR LF, then every listed name followed by CR LF. For each catalogue name
// in turn: when CR LF + name + CR LF occurs in it without regard to letter case, the file is known, the count
// of new files falls by one and every occurrence of name + CR LF is removed, letter case counting; otherwise
// the file has departed. Its consequences are kept:
//
//   - a known name that is the tail of another listed name cuts that one short, and what is left of it runs
//     together with the name that follows ("a.rtf" makes of "xa.rtf", "z.rtf" the one name "xz.rtf");
//   - a name known in another letter case is counted as known, but not removed;
//   - a name that the catalogue has twice is known the first time and departed the second.
//
// Done literally that is quadratic. Here every line of the text follows the catalogue names that are tails of
// it, each found by narrowing a range of the names sorted by their reversed letters; lines only ever grow to
// the left or vanish, so a tail once found stays one. The cost is the letters of all names times a binary
// search.
#pragma once

#include <vector>

#include "common/text.h"

namespace tav {

struct FolderDifference {
    std::vector<Text> remaining;  // the lines left in the text, in order
    std::vector<Text> departed;   // in the order of the catalogue, repeated as often as found departed
    int new_files = 0;            // the count
};

// `listed` holds names without control characters and never an empty one; `catalogued` any texts, in document
// order. A catalogue name with a line break in it is departed.
FolderDifference CompareFolder(const std::vector<Text>& listed, const std::vector<Text>& catalogued);

}  // namespace tav
