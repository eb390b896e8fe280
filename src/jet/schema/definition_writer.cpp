#include "jet/schema/definition_writer.h"

#include <algorithm>

#include "jet/schema/definition_layout.h"

namespace tav::jet {
namespace {

using namespace layout;

RealIndexBlock BlockOf(const TableDefinition& table, const RealIndex& index) {
    RealIndexBlock block;
    for (std::size_t i = 0; i < index.columns.size(); ++i) {
        const IndexColumn& part = index.columns[i];
        block.places[i] = {table.columns[part.column].number, static_cast<std::uint8_t>(part.ascending)};
    }
    block.map = index.map;
    block.root = index.root;
    block.flags = RealIndexBlock::kAlways;
    if (index.unique) block.flags |= RealIndexBlock::kUnique;
    if (index.ignores_nulls) block.flags |= RealIndexBlock::kIgnoresNulls;
    if (index.required) block.flags |= RealIndexBlock::kRequired;
    return block;
}

}  // namespace

std::string DefinitionBytes(const TableDefinition& table, const DefinitionCounts& counts) {
    DefinitionBlocks blocks;
    blocks.header.rows = counts.rows;
    blocks.header.kind = table.system ? 'S' : 'N';
    blocks.header.column_capacity = table.column_capacity;
    blocks.header.variable_columns = table.variable_columns;
    blocks.header.owned_map = table.owned_map;
    blocks.header.free_map = table.free_map;
    blocks.long_values = table.long_values;
    for (const std::uint32_t keys : counts.distinct_keys) blocks.counters.push_back({0, keys});
    for (const Column& column : table.columns) {
        ColumnBlock& block = blocks.columns.emplace_back();
        block.column = column;
        if (!column.IsFixed()) block.column.fixed_offset = 0;
        block.ordinal = table.system ? 0 : column.number;
        blocks.column_names.push_back(column.name);
    }
    for (const RealIndex& index : table.indexes) blocks.indexes.push_back(BlockOf(table, index));
    for (const LogicalIndex& index : table.logical_indexes) {
        blocks.logical_indexes.emplace_back().index = index;
        blocks.index_names.push_back(index.name);
    }
    return WriteBlocks(std::move(blocks));
}

std::size_t DefinitionPages(std::size_t bytes) {
    const std::size_t rest = bytes - std::min(bytes, kPageSize);
    return 1 + (rest + kPageSize - kPageHeader - 1) / (kPageSize - kPageHeader);
}

std::vector<Page> CutDefinition(std::string_view bytes, const std::vector<PageNumber>& numbers) {
    std::vector<Page> pages;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t header = i == 0 ? 0 : kPageHeader;
        const std::string_view piece = bytes.substr(0, kPageSize - header);
        bytes.remove_prefix(piece.size());

        Page page{};
        std::copy(piece.begin(), piece.end(), page.begin() + static_cast<std::ptrdiff_t>(header));
        page[0] = static_cast<std::uint8_t>(PageType::TableDefinition);
        page[1] = 1;
        const std::size_t free = kPageSize - header - piece.size();
        PutU16(&page[2], static_cast<std::uint16_t>(free - std::min(free, kPageHeader)));
        PutU32(&page[4], i + 1 < numbers.size() ? numbers[i + 1] : 0);
        pages.push_back(page);
    }
    return pages;
}

}  // namespace tav::jet
