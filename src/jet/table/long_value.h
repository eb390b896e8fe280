// Memo and OLE values: a head of 12 bytes in the row, and data behind it or elsewhere.
//
//     +0  u32  bits 0-29: length of the data in bytes; bits 30-31: where it is
//     +4  ptr  to a record on a long-value page: the data (kind 1), or the first record of a chain (kind 0)
//     +8  0
//
// The records of a chain begin with a pointer to the next one, 0 in the last. Inline data (kind 2) follows
// the head. Only inline values are written, of up to 64 bytes as the database engine does.
#pragma once

#include <span>
#include <string>

#include "jet/file/format.h"

namespace tav::jet {

class PageFile;

inline constexpr std::size_t kLongestInlineValue = 64;

// The data of the value with that head; `at` is the row's page, named when the head is damaged.
std::string ReadLongValue(PageFile& file, PageNumber at, std::span<const std::uint8_t> stored);

// Whether the data follows the head, so that it lives and dies with the row.
bool IsInlineValue(std::span<const std::uint8_t> stored);

void AppendInlineValue(std::string& out, std::string_view data);

}  // namespace tav::jet
