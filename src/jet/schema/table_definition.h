// The definition ("tdef") of one table: its columns, its indexes, where its pages are listed.
#pragma once

#include <optional>
#include <vector>

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet {

class PageFile;

enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Internal = 17
};

struct Column {
    Text name;
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0;          // null-mask bit; what index blocks refer to
    std::uint16_t variable_index = 0;  // of a variable column: its place in the row's variable table
    std::uint16_t fixed_offset = 0;    // of a fixed column: where its value stands in the fixed area
    std::uint16_t length = 0;          // bytes; a text column holds length / 2 characters
    std::uint16_t sort_order = 0;      // of a text column: LCID; of a numeric one: precision and scale
    std::uint8_t sort_version = 0;
    std::uint8_t flags = 0;
    std::uint8_t extended_flags = 0;
    // What the table's designer has set; expressions are as they were written.
    bool required = false;       // takes no Null
    bool refuses_empty = false;  // takes no text without characters
    Text default_value;          // what an insert that does not name the column stores
    Text validation_rule;        // empty when there is none

    // Of a numeric column: decimal digits at most, and how many of them are decimals.
    int precision() const { return sort_order & 0xFF; }
    int scale() const { return sort_order >> 8; }
    bool IsFixed() const { return (flags & 0x01) != 0; }
    bool IsAutonumber() const { return (flags & 0x04) != 0; }
    bool CompressesText() const { return (extended_flags & 0x01) != 0; }
    bool IsLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
    bool IsText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
};

struct IndexColumn {
    std::size_t column = 0;  // position in TableDefinition::columns
    bool ascending = true;
};

// A real index: one tree of pages.
struct RealIndex {
    std::vector<IndexColumn> columns;
    Pointer map;
    PageNumber root = 0;
    bool unique = false;
    bool ignores_nulls = false;
    bool required = false;
    bool primary = false;        // some logical index makes it the primary key
    Text name;                   // of the first logical index that names it
    std::size_t counter_at = 0;  // offset of its 12-byte counter on the first page
};

// What refers to a real index by name; relationships are logical indexes too.
struct LogicalIndex {
    Text name;
    std::uint32_t number = 0;
    std::uint32_t real_index = 0;   // position in TableDefinition::indexes
    std::uint8_t type = 0;          // 0 normal, 1 primary key, 2 foreign key
    std::uint8_t relationship = 0;  // 0 none, 1 this table is the referenced side, 2 the referencing side
    PageNumber partner_table = 0;
};

struct LongValueMaps {
    std::uint16_t column_number = 0;
    Pointer owned;
    Pointer free;
};

struct TableDefinition {
    Text name;
    PageNumber page = 0;            // its first page; the owner field of its data and index pages
    std::vector<PageNumber> pages;  // all pages of the definition, the first one included
    bool system = false;
    std::uint16_t column_capacity = 0;   // highest column number ever used + 1: a row's column count
    std::uint16_t variable_columns = 0;  // deleted ones included
    std::vector<Column> columns;         // in the order of the file's column blocks
    std::vector<RealIndex> indexes;
    std::vector<LogicalIndex> logical_indexes;
    std::vector<LongValueMaps> long_values;
    Text validation_rule;  // of the rows; empty when there is none
    Pointer owned_map;
    Pointer free_map;
    std::uint16_t fixed_size = 0;  // bytes of the fixed area
    // Position in `columns` by variable index; columns.size() where a column was deleted.
    std::vector<std::size_t> variable_order;

    // Position of the column of that name, letter case ignored.
    std::optional<std::size_t> FindColumn(TextView column_name) const;
};

// Whether columns of that type are known in this format.
bool IsKnown(ColumnType type);

// Bytes of a column's value in the fixed area, or in a variable place when its type fixes them. A boolean has
// none: it is its bit in the null mask.
std::uint16_t ValueSize(const Column& column);

// Reads the definition that starts on `page`. What contradicts itself is a Failure that names file, page and
// reason. Columns of an unknown type have their bytes as values, and no others.
TableDefinition ReadTableDefinition(PageFile& file, PageNumber page, TextView name);

// The same without a judgement on columns and indexes: enough to know the pages and maps of a table that
// nobody reads.
TableDefinition ReadTablePages(PageFile& file, PageNumber page, TextView name);

}  // namespace tav::jet
