#include "jet/schema/definition_layout.h"

#include <algorithm>
#include <type_traits>

namespace tav::jet::layout {
namespace {

// Walks a definition's bytes and fills the blocks from them.
class Reading {
 public:
    explicit Reading(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    template <class Number>
    void Field(Number& value) {
        std::uint64_t read = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i) read |= std::uint64_t{Next()} << 8 * i;
        value = static_cast<Number>(read);
    }
    void Field(Pointer& pointer) {
        std::uint32_t word = 0;
        Field(word);
        pointer = Pointer::FromWord(word);
    }
    void Field(Text& name) {
        std::uint16_t size = 0;
        Field(size);
        if (size % 2 != 0) failure_ = u"a name in the table definition has an odd length";
        name.clear();
        for (std::size_t i = 0; i < size / 2u && failure_.empty(); ++i) {
            name.push_back(u'\0');
            Field(name.back());
        }
    }
    void Skip(std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) Next();
    }
    template <class Block, class Fields>
    void Each(std::vector<Block>& blocks, std::size_t count, Fields fields) {
        for (std::size_t i = 0; i < count && failure_.empty(); ++i) fields(*this, blocks.emplace_back());
    }
    // Blocks up to the end mark.
    template <class Block, class Fields>
    void EachToEnd(std::vector<Block>& blocks, Fields fields) {
        while (failure_.empty()) {
            const bool at_end = bytes_.size() - at_ < 2 || U16(bytes_.data() + at_) == kNoColumn;
            if (at_end) return Skip(2);
            fields(*this, blocks.emplace_back());
        }
    }
    // Before as many blocks are read as the header claims.
    void CheckCounts(const HeaderBlock& header) {
        if (header.columns > kMostColumns) {
            failure_ = u"the table definition has impossible numbers of columns";
        } else if (header.real_indexes > kMostIndexes || header.logical_indexes > kMostIndexes) {
            failure_ = u"the table definition has impossible numbers of indexes";
        }
    }

    std::size_t position() const { return at_; }
    const Text& failure() const { return failure_; }

 private:
    std::uint8_t Next() {
        if (at_ < bytes_.size()) return bytes_[at_++];
        failure_ = u"the table definition ends too early";
        return 0;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    Text failure_;
};

// Appends the bytes of the blocks.
class Writing {
 public:
    template <class Number>
    void Field(const Number& value) {
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            bytes_ += static_cast<char>(static_cast<std::uint64_t>(value) >> 8 * i & 0xFF);
        }
    }
    void Field(const Pointer& pointer) { Field(pointer.Word()); }
    void Field(const Text& name) {
        Field(static_cast<std::uint16_t>(2 * name.size()));
        for (const char16_t c : name) Field(c);
    }
    void Skip(std::size_t size) { bytes_.append(size, '\0'); }
    template <class Block, class Fields>
    void Each(const std::vector<Block>& blocks, std::size_t, Fields fields) {
        for (const Block& block : blocks) fields(*this, block);
    }
    template <class Block, class Fields>
    void EachToEnd(const std::vector<Block>& blocks, Fields fields) {
        Each(blocks, blocks.size(), fields);
        Field(kNoColumn);
    }
    void CheckCounts(const HeaderBlock&) {}

    std::string Take() { return std::move(bytes_); }

 private:
    std::string bytes_;
};

// Below, `io` reads into a block or writes it: the fields in their order.

constexpr auto kHeaderFields = [](auto& io, auto& block) {
    io.Skip(kPageHeader);
    io.Field(block.length);
    io.Field(block.constant);
    io.Field(block.rows);
    io.Field(block.autonumber);
    io.Field(block.one);
    io.Skip(12);
    io.Field(block.kind);
    io.Field(block.column_capacity);
    io.Field(block.variable_columns);
    io.Field(block.columns);
    io.Field(block.logical_indexes);
    io.Field(block.real_indexes);
    io.Field(block.owned_map);
    io.Field(block.free_map);
};

constexpr auto kCounterFields = [](auto& io, auto& block) {
    io.Field(block.entries);
    io.Field(block.distinct_keys);
    io.Skip(4);
};

constexpr auto kColumnFields = [](auto& io, auto& block) {
    io.Field(block.column.type);
    io.Field(block.constant);
    io.Field(block.column.number);
    io.Field(block.column.variable_index);
    io.Field(block.ordinal);
    io.Field(block.column.sort_order);
    io.Skip(1);
    io.Field(block.column.sort_version);
    io.Field(block.column.flags);
    io.Field(block.column.extended_flags);
    io.Skip(4);
    io.Field(block.column.fixed_offset);
    io.Field(block.column.length);
};

constexpr auto kRealIndexFields = [](auto& io, auto& block) {
    io.Field(block.constant);
    for (auto& place : block.places) {
        io.Field(place.column_number);
        io.Field(place.order);
    }
    io.Field(block.map);
    io.Field(block.root);
    io.Skip(4);
    io.Field(block.flags);
    io.Skip(5);
};

constexpr auto kLogicalIndexFields = [](auto& io, auto& block) {
    io.Field(block.constant);
    io.Field(block.index.number);
    io.Field(block.index.real_index);
    io.Field(block.index.relationship);
    io.Field(block.partner_index);
    io.Field(block.index.partner_table);
    io.Field(block.cascade_updates);
    io.Field(block.cascade_deletes);
    io.Field(block.index.type);
    io.Skip(4);
};

constexpr auto kLongValueFields = [](auto& io, auto& maps) {
    io.Field(maps.column_number);
    io.Field(maps.owned);
    io.Field(maps.free);
};

constexpr auto kNameFields = [](auto& io, auto& name) { io.Field(name); };

// The blocks in their order.
template <class Io, class Blocks>
void Layout(Io& io, Blocks& blocks) {
    kHeaderFields(io, blocks.header);
    io.CheckCounts(blocks.header);
    io.Each(blocks.counters, blocks.header.real_indexes, kCounterFields);
    io.Each(blocks.columns, blocks.header.columns, kColumnFields);
    io.Each(blocks.column_names, blocks.header.columns, kNameFields);
    io.Each(blocks.indexes, blocks.header.real_indexes, kRealIndexFields);
    io.Each(blocks.logical_indexes, blocks.header.logical_indexes, kLogicalIndexFields);
    io.Each(blocks.index_names, blocks.header.logical_indexes, kNameFields);
    io.EachToEnd(blocks.long_values, kLongValueFields);
}

RealIndex IndexOf(const RealIndexBlock& block, const std::vector<Column>& columns) {
    RealIndex index;
    for (const RealIndexBlock::Place& place : block.places) {
        if (place.column_number == kNoColumn) continue;
        const auto found = std::ranges::find(columns, place.column_number, &Column::number);
        index.columns.push_back({static_cast<std::size_t>(found - columns.begin()), place.order != 0});
    }
    index.map = block.map;
    index.root = block.root;
    index.unique = (block.flags & RealIndexBlock::kUnique) != 0;
    index.ignores_nulls = (block.flags & RealIndexBlock::kIgnoresNulls) != 0;
    index.required = (block.flags & RealIndexBlock::kRequired) != 0;
    return index;
}

}  // namespace

Text ReadBlocks(std::span<const std::uint8_t> bytes, DefinitionBlocks& blocks) {
    Reading reading(bytes);
    Layout(reading, blocks);
    blocks.end = reading.position();
    return reading.failure();
}

std::string WriteBlocks(DefinitionBlocks blocks) {
    blocks.header.columns = static_cast<std::uint16_t>(blocks.columns.size());
    blocks.header.logical_indexes = static_cast<std::uint32_t>(blocks.logical_indexes.size());
    blocks.header.real_indexes = static_cast<std::uint32_t>(blocks.indexes.size());
    const auto bytes_of = [](const DefinitionBlocks& all) {
        Writing writing;
        Layout(writing, all);
        return writing.Take();
    };
    blocks.header.length = static_cast<std::uint32_t>(bytes_of(blocks).size());
    return bytes_of(blocks);
}

void TakeBlocks(const DefinitionBlocks& blocks, TableDefinition& table) {
    table.system = blocks.header.kind == 'S';
    table.column_capacity = blocks.header.column_capacity;
    table.variable_columns = blocks.header.variable_columns;
    table.owned_map = blocks.header.owned_map;
    table.free_map = blocks.header.free_map;
    table.long_values = blocks.long_values;
    for (std::size_t i = 0; i < blocks.columns.size(); ++i) {
        table.columns.push_back(blocks.columns[i].column);
        table.columns.back().name = blocks.column_names[i];
    }
    for (const RealIndexBlock& block : blocks.indexes) {
        table.indexes.push_back(IndexOf(block, table.columns));
        table.indexes.back().counter_at = kHeader + kCounter * (table.indexes.size() - 1);
    }
    for (std::size_t i = 0; i < blocks.logical_indexes.size(); ++i) {
        LogicalIndex& logical = table.logical_indexes.emplace_back(blocks.logical_indexes[i].index);
        logical.name = blocks.index_names[i];
        if (logical.real_index >= table.indexes.size()) continue;
        RealIndex& backing = table.indexes[logical.real_index];
        if (backing.name.empty()) backing.name = logical.name;
        if (logical.type == 1) backing.primary = true;
    }
}

}  // namespace tav::jet::layout
