// Where an index page that overflowed is divided.
//
// When the new entry is the last one of the last page of its level, the left page stays as full as it is:
// rows loaded in order fill their pages. Else both pages get about the same number of bytes.
#pragma once

#include <span>
#include <string>

#include "jet/file/format.h"

namespace tav::jet {

// The entries [0, cut] of a leaf go left, the others right. At least two entries.
std::size_t CutLeaf(std::span<const std::string> entries, bool appended);

// The entries [0, cut) of a node go left, where the child of entry `cut` becomes the tail; the others right.
// At least three entries, so that both nodes keep one.
std::size_t CutNode(std::span<const std::string> entries, bool appended);

}  // namespace tav::jet
