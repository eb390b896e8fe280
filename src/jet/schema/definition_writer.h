// Table definitions as pages: what ReadTableDefinition reads. The layout is in definition_layout.h.
#pragma once

#include <string>
#include <string_view>

#include "jet/schema/table_definition.h"

namespace tav::jet {

struct DefinitionCounts {
    std::uint32_t rows = 0;
    std::vector<std::uint32_t> distinct_keys;  // of each index
};

// The whole definition as one run of bytes, the header of its first page included (free field and next page
// are 0). Pages, root pages and map pointers are written as the definition has them.
std::string DefinitionBytes(const TableDefinition& table, const DefinitionCounts& counts);

// How many pages a definition of so many bytes takes.
std::size_t DefinitionPages(std::size_t bytes);

// The definition cut into its pages, which will stand on `numbers`.
std::vector<Page> CutDefinition(std::string_view bytes, const std::vector<PageNumber>& numbers);

}  // namespace tav::jet
