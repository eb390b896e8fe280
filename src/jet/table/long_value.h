// Memo and OLE values: a head of 12 bytes in the row, and data after it or elsewhere.
//
//     +0  u32  bits 0-29: length of the data in bytes; bits 30-31: where it is
//     +4  ptr  to a record on a long-value page: the data (kind 1), or the first record of a chain (kind 0)
//     +8  0
//
// The records of a chain begin with a pointer to the next one, 0 in the last; all but the last have 4076 bytes.
// Inline data (kind 2) follows the head. As the database engine does it, up to 64 bytes are written inline,
// what fits a record as one, all else as a chain.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet {

class PageFile;
class RecordSpace;

inline constexpr std::size_t kLongValueHead = 12;
inline constexpr std::size_t kLongestInlineValue = 64;
inline constexpr std::size_t kLongestValue = 0x3FFFFFFF;

// What the head in a row leads to.
struct LongValue {
    std::string data;
    std::vector<Pointer> records;  // none of an inline value
};

// Reads the value with that head. Why it cannot be read (a chain in a circle, a wrong length), or empty; what is
// wrong with a page is a Failure that names it.
Text ReadLongValue(PageFile& file, std::span<const std::uint8_t> stored, LongValue& value);

void AppendInlineValue(std::string& out, std::string_view data);

// Writes data of at most kLongestValue bytes outside of rows; its head.
std::string WriteLongValue(PageFile& file, RecordSpace& space, std::string_view data);

}  // namespace tav::jet
