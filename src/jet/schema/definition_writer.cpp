#include "jet/schema/definition_writer.h"

#include <algorithm>

#include "jet/schema/definition_layout.h"

namespace tav::jet {
namespace {

using namespace layout;

class Bytes {
 public:
    Bytes& Put(std::uint64_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) bytes_ += static_cast<char>(value >> 8 * i & 0xFF);
        return *this;
    }
    Bytes& Put8(std::uint64_t value) { return Put(value, 1); }
    Bytes& Put16(std::uint64_t value) { return Put(value, 2); }
    Bytes& Put32(std::uint64_t value) { return Put(value, 4); }
    Bytes& Zeros(std::size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    Bytes& Name(TextView name) {
        Put16(2 * name.size());
        for (const char16_t c : name) Put16(c);
        return *this;
    }
    std::string Take() { return std::move(bytes_); }

 private:
    std::string bytes_;
};

void PutHeader(Bytes& out, const TableDefinition& table, std::uint32_t rows) {
    out.Put8(2).Put8(1).Zeros(6);
    out.Zeros(4);  // the length, known at the end
    out.Put32(kConstant).Put32(rows).Put32(0).Put32(1).Zeros(12);
    out.Put8(table.system ? 'S' : 'N');
    out.Put16(table.column_capacity).Put16(table.variable_columns).Put16(table.columns.size());
    out.Put32(table.logical_indexes.size()).Put32(table.indexes.size());
    out.Put32(table.owned_map.Word()).Put32(table.free_map.Word());
}

void PutColumn(Bytes& out, const Column& column, bool system) {
    out.Put8(static_cast<std::uint8_t>(column.type)).Put32(kConstant);
    out.Put16(column.number).Put16(column.variable_index).Put16(system ? 0 : column.number);
    out.Put16(column.sort_order).Put8(0).Put8(column.sort_version);
    out.Put8(column.flags).Put8(column.extended_flags).Put32(0);
    out.Put16(column.IsFixed() ? column.fixed_offset : 0).Put16(column.length);
}

void PutRealIndex(Bytes& out, const TableDefinition& table, const RealIndex& index) {
    out.Put32(kIndexConstant);
    for (std::size_t i = 0; i < kIndexPlaces; ++i) {
        const bool used = i < index.columns.size();
        out.Put16(used ? table.columns[index.columns[i].column].number : kNoColumn);
        out.Put8(used && index.columns[i].ascending ? 1 : 0);
    }
    out.Put32(index.map.Word()).Put32(index.root).Put32(0);
    out.Put8(0x80 | (index.unique ? 0x01 : 0) | (index.ignores_nulls ? 0x02 : 0) |
             (index.required ? 0x08 : 0));
    out.Zeros(5);
}

void PutLogicalIndex(Bytes& out, const LogicalIndex& index) {
    out.Put32(kConstant).Put32(index.number).Put32(index.real_index);
    out.Put8(0).Put32(0xFFFFFFFF).Put32(0).Put8(4).Put8(4).Put8(index.type).Zeros(4);
}

}  // namespace

std::string DefinitionBytes(const TableDefinition& table, const DefinitionCounts& counts) {
    Bytes out;
    PutHeader(out, table, counts.rows);
    for (const std::uint32_t keys : counts.distinct_keys) out.Put32(0).Put32(keys).Put32(0);
    for (const Column& column : table.columns) PutColumn(out, column, table.system);
    for (const Column& column : table.columns) out.Name(column.name);
    for (const RealIndex& index : table.indexes) PutRealIndex(out, table, index);
    for (const LogicalIndex& index : table.logical_indexes) PutLogicalIndex(out, index);
    for (const LogicalIndex& index : table.logical_indexes) out.Name(index.name);
    for (const LongValueMaps& maps : table.long_values) {
        out.Put16(maps.column_number).Put32(maps.owned.Word()).Put32(maps.free.Word());
    }
    out.Put16(kNoColumn);

    std::string bytes = out.Take();
    for (std::size_t i = 0; i < 4; ++i) bytes[8 + i] = static_cast<char>(bytes.size() >> 8 * i & 0xFF);
    return bytes;
}

std::size_t DefinitionPages(std::size_t bytes) {
    const std::size_t behind = bytes - std::min(bytes, kPageSize);
    return 1 + (behind + kPageSize - kPageHeader - 1) / (kPageSize - kPageHeader);
}

std::vector<Page> CutDefinition(std::string_view bytes, const std::vector<PageNumber>& numbers) {
    std::vector<Page> pages;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t header = i == 0 ? 0 : kPageHeader;
        const std::string_view piece = bytes.substr(0, kPageSize - header);
        bytes.remove_prefix(piece.size());

        Page page{};
        page[0] = static_cast<std::uint8_t>(PageType::TableDefinition);
        page[1] = 1;
        std::copy(piece.begin(), piece.end(), page.begin() + static_cast<std::ptrdiff_t>(header));
        const std::size_t free = kPageSize - header - piece.size();
        PutU16(&page[2], static_cast<std::uint16_t>(free - std::min(free, kPageHeader)));
        PutU32(&page[4], i + 1 < numbers.size() ? numbers[i + 1] : 0);
        pages.push_back(page);
    }
    return pages;
}

}  // namespace tav::jet
