// Index keys: the bytes by which an index orders its rows.
//
// A key is made of its columns in the index's order. Null is the one byte 00, or FF in a descending column.
// A value is 7F (descending 80) and then, most significant byte first:
//
//     byte                     the byte
//     integer, long, currency  two's complement, the sign bit flipped
//     double, date             IEEE 754; a negative number with all bits inverted, else the sign bit flipped
//     binary                   groups of 8 bytes with 09 after each; the last one filled up with zeros, then
//                              its count of bytes (1 to 8)
//     text, memo               the codes of the first 255 characters without trailing spaces (text_codes.h),
//                              01, then the blocks of accents and of apostrophes, hyphens and dashes where
//                              there are any, 00
//
// In a descending long column the bytes after the 80 are inverted.
//
// These are the encodings found in files of the database's own program. Those never met there have no keys
// here: single, boolean, GUID, numeric and OLE columns; descending columns but for long; text in any sort
// order but 1033 version 0; empty binary; characters without a known code.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

// The longest key that is made: three entries with such keys fit every page of a tree (index_page.h), so
// that each page can be split.
inline constexpr std::size_t kMaxKeySize = 1197;

// Whether keys of this index can be made: every column's type and sort order has known codes. The reason, or
// empty.
Text WhyNoKeys(const TableDefinition& table, const RealIndex& index);

// The key of a row (values in the order of table.columns, of the columns' kinds). A value whose code is not
// known, or a key beyond kMaxKeySize, is a Failure that names column and value; nothing has been changed
// then.
std::string EncodeKey(const TableDefinition& table, const RealIndex& index, std::span<const Value> row);

// The key of one column's value, to be put together by a search over the leading columns of an index. No
// value when the searched value has no code, or more than one (zero with and without its sign, in double and
// date columns), so that the index cannot answer. Values that the index takes for equal (letter case,
// trailing spaces, what stands after character 255) have the same key: a search compares the rows it finds.
std::optional<std::string> EncodeKeyColumn(const Column& column, bool ascending, const Value& value);

// Whether every index column is Null in the row; such a row has no entry in an index that ignores Nulls.
bool AllNull(const RealIndex& index, std::span<const Value> row);

}  // namespace tav::jet
