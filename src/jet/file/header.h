// Page 0: what kind of file this is.
//
// Bytes 0x18 to 0x97 are masked (header_mask.h). The password field is masked once more with the creation
// date's day number, so without a password it is not zero.
#pragma once

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet {

inline constexpr std::size_t kHeaderSize = 0x98;  // up to the end of the masked area

// Why the file that starts with these kHeaderSize bytes (as they stand on the disk) cannot be used; empty
// when it can. The text names the file.
Text WhyForeign(TextView path, const std::uint8_t* header);

// Where the records of the file's own two maps are (global_map.h). `header` is as long as above.
struct GlobalMapPointers {
    Pointer free;
    Pointer released;
};
GlobalMapPointers FindGlobalMaps(const std::uint8_t* header);

}  // namespace tav::jet
