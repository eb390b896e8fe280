// The bytes of a table definition: what ReadTableDefinition reads.
#pragma once

#include <string>
#include <string_view>

#include "jet/table_definition.h"

namespace tav::jet {

struct DefinitionCounts {
    std::uint32_t rows = 0;
    std::vector<std::uint32_t> distinct_keys;  // of each index
};

// Bytes of a value of the type; 0 for booleans and for what has no size of its own (text, memo, ...).
std::uint16_t SizeOfType(ColumnType type);

// The whole definition as one run of bytes, the header of its first page included (free field and next page
// are 0). Pages, root pages and map pointers are written as the definition has them.
std::string DefinitionBytes(const TableDefinition& table, const DefinitionCounts& counts);

// How many pages a definition of so many bytes takes.
std::size_t DefinitionPages(std::size_t bytes);

// The definition cut into its pages, which will stand on `numbers`.
std::vector<Page> CutDefinition(std::string_view bytes, const std::vector<PageNumber>& numbers);

}  // namespace tav::jet
