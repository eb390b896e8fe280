// The layout of a table definition ("tdef"): its blocks, their order, fields and limits.
//
// A definition is the first of its pages whole and the others without their headers of 8 bytes. Its blocks
// follow each other without gaps, each kind as often as the header says:
//
//     header          63 bytes  begins with the first page's header
//     index counters  12        of each real index
//     column blocks   25
//     column names              u16 size in bytes, UTF-16
//     real indexes    52        trees of pages
//     logical indexes 28        names of real indexes, and relationships
//     index names               as column names
//     long values     10        maps of a memo or OLE column; a column number FFFF ends them
//
// Numbers are little-endian. Every field is named once, in definition_layout.cpp, for reading and writing
// alike. Bytes without a known meaning are skipped when read and zero when written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jet/schema/table_definition.h"

namespace tav::jet::layout {

inline constexpr std::uint32_t kConstant = 1625;       // in the header, columns and logical indexes
inline constexpr std::uint32_t kIndexConstant = 1923;  // in real indexes
inline constexpr std::size_t kPageHeader = 8;          // u8 2, u8 1, u16 free bytes - 8, u32 next page
inline constexpr std::size_t kHeader = 63;
inline constexpr std::size_t kCounter = 12;
inline constexpr std::size_t kIndexPlaces = 10;     // columns of an index
inline constexpr std::uint16_t kNoColumn = 0xFFFF;  // an unused place of an index

// On the first page: counters that every change of a row keeps.
inline constexpr std::size_t kRowCountAt = 16;
inline constexpr std::size_t kAutonumberAt = 20;
inline constexpr std::size_t kDistinctKeysAt = 4;  // in an index counter

// No table has more; what a definition claims beyond is damage. All index counters lie on the first page.
inline constexpr std::size_t kMostColumns = 255;
inline constexpr std::size_t kMostIndexes = 256;
inline constexpr std::size_t kMostBytes = 1 << 20;
inline constexpr std::size_t kMostPages = kMostBytes / kPageSize;

struct HeaderBlock {
    std::uint32_t length = 0;  // of all blocks with the end mark
    std::uint32_t constant = kConstant;
    std::uint32_t rows = 0;        // a hint in files of other programs
    std::uint32_t autonumber = 0;  // the last one given out
    std::uint32_t one = 1;
    std::uint8_t kind = 'N';  // 'N' of users, 'S' of the system
    std::uint16_t column_capacity = 0;
    std::uint16_t variable_columns = 0;
    std::uint16_t columns = 0;
    std::uint32_t logical_indexes = 0;
    std::uint32_t real_indexes = 0;
    Pointer owned_map;
    Pointer free_map;
};

struct CounterBlock {
    std::uint32_t entries = 0;        // at some moment
    std::uint32_t distinct_keys = 0;  // grows with every new key, never shrinks
};

struct ColumnBlock {
    Column column;  // but for its name
    std::uint32_t constant = kConstant;
    std::uint16_t ordinal = 0;
};

struct RealIndexBlock {
    struct Place {
        std::uint16_t column_number = kNoColumn;
        std::uint8_t order = 0;  // 1 ascending, 0 descending
    };
    std::uint32_t constant = kIndexConstant;
    std::array<Place, kIndexPlaces> places;
    Pointer map;
    PageNumber root = 0;
    std::uint8_t flags = 0;

    static constexpr std::uint8_t kUnique = 0x01;
    static constexpr std::uint8_t kIgnoresNulls = 0x02;
    static constexpr std::uint8_t kRequired = 0x08;
    static constexpr std::uint8_t kAlways = 0x80;
};

struct LogicalIndexBlock {
    LogicalIndex index;  // but for its name
    std::uint32_t constant = kConstant;
    std::uint32_t partner_index = 0xFFFFFFFF;
    std::uint8_t cascade_updates = 4;  // 4: no relationship
    std::uint8_t cascade_deletes = 4;
};

struct DefinitionBlocks {
    HeaderBlock header;
    std::vector<CounterBlock> counters;
    std::vector<ColumnBlock> columns;
    std::vector<Text> column_names;
    std::vector<RealIndexBlock> indexes;
    std::vector<LogicalIndexBlock> logical_indexes;
    std::vector<Text> index_names;
    std::vector<LongValueMaps> long_values;
    std::size_t end = 0;  // offset after the end mark
};

// Reads the blocks of a definition. Why it cannot be read (it ends too early, claims more columns or indexes
// than a table has, a name is cut), or empty; whether the values make sense is for the caller to judge.
Text ReadBlocks(std::span<const std::uint8_t> bytes, DefinitionBlocks& blocks);

// The bytes of the blocks; counts and length are put into the header.
std::string WriteBlocks(DefinitionBlocks blocks);

// Puts the blocks into a definition, whose name and pages are the caller's. An index column that names no
// column gets the position columns.size(); a logical index may name a real one that does not exist.
void TakeBlocks(const DefinitionBlocks& blocks, TableDefinition& table);

}  // namespace tav::jet::layout
