#include "jet/schema/table_definition.h"

#include <algorithm>

#include "common/concat.h"
#include "jet/file/page_file.h"
#include "jet/schema/definition_layout.h"

namespace tav::jet {
namespace {

using namespace layout;

constexpr int kMostPrecision = 28;

// What contradicts itself on the way.
class Damage {
 public:
    Damage(const PageFile& file, PageNumber page) : file_(file), page_(page) {}
    [[noreturn]] void operator()(TextView reason) const { file_.Damaged(page_, reason); }

 private:
    const PageFile& file_;
    PageNumber page_;
};

// The definition's bytes from the chain of its pages, which goes into `pages`.
std::vector<std::uint8_t> Gather(PageFile& file, PageNumber first, std::vector<PageNumber>& pages) {
    std::vector<std::uint8_t> bytes;
    std::size_t length = kHeader;
    for (PageNumber page = first; page != 0 && bytes.size() < length;) {
        const Page& content = file.Read(page);
        if (content[0] != static_cast<std::uint8_t>(PageType::TableDefinition) || content[1] != 1) {
            file.Damaged(page, u"a table definition is expected here");
        }
        bytes.insert(bytes.end(), content.begin() + (pages.empty() ? 0 : kPageHeader), content.end());
        if (pages.empty()) length = U32(content.data() + kPageHeader);
        if (length < kHeader || length > kMostBytes) {
            file.Damaged(page, u"the table definition has an impossible length");
        }
        pages.push_back(page);
        page = U32(content.data() + 4);
    }
    if (bytes.size() < length) file.Damaged(first, u"the table definition ends too early");
    bytes.resize(length);
    return bytes;
}

TableDefinition Take(PageFile& file, PageNumber page, TextView name, DefinitionBlocks& blocks) {
    const Damage damaged(file, page);
    TableDefinition table;
    table.name = name;
    table.page = page;
    if (const Text why = ReadBlocks(Gather(file, page, table.pages), blocks); !why.empty()) damaged(why);
    TakeBlocks(blocks, table);
    if (blocks.header.constant != kConstant) damaged(u"the table definition does not look like one");
    return table;
}

void CheckColumn(const Damage& damaged, const TableDefinition& table, const Column& column) {
    if (column.number >= table.column_capacity) damaged(u"a column number is too high");
    if (column.type == ColumnType::Numeric &&
        (column.precision() < 1 || column.precision() > kMostPrecision ||
         column.scale() > column.precision())) {
        damaged(Concat(u"column '", column.name, u"' has an impossible precision or scale"));
    }
    if (column.type == ColumnType::Boolean) return;
    if (column.IsFixed() && column.IsLongValue()) damaged(u"a long value is said to be fixed");
    if (!column.IsFixed() && column.variable_index >= table.variable_columns) {
        damaged(u"a variable column has too high an index");
    }
    if (column.IsFixed() && column.fixed_offset + ValueSize(column) > static_cast<int>(kPageSize)) {
        damaged(u"a fixed column lies outside every row");
    }
}

// Fixed columns must not overlap, variable ones not share a place, numbers not repeat.
void PlaceColumns(const Damage& damaged, TableDefinition& table) {
    std::vector<bool> numbers(table.column_capacity);
    table.variable_order.assign(table.variable_columns, table.columns.size());
    std::vector<bool> bytes(kPageSize);
    const auto take = [&](std::vector<bool>& set, std::size_t at) {
        if (set[at]) damaged(u"two columns share one place");
        set[at] = true;
    };
    for (std::size_t position = 0; position < table.columns.size(); ++position) {
        const Column& column = table.columns[position];
        take(numbers, column.number);
        if (column.type == ColumnType::Boolean) continue;
        if (!column.IsFixed()) {
            std::size_t& place = table.variable_order[column.variable_index];
            if (place != table.columns.size()) damaged(u"two columns share one place");
            place = position;
            continue;
        }
        const auto end = static_cast<std::uint16_t>(column.fixed_offset + ValueSize(column));
        for (std::size_t at = column.fixed_offset; at < end; ++at) take(bytes, at);
        table.fixed_size = std::max(table.fixed_size, end);
    }
}

void CheckIndexes(const Damage& damaged, const DefinitionBlocks& blocks, const TableDefinition& table,
                  PageNumber page_count) {
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        const RealIndex& index = table.indexes[i];
        if (blocks.indexes[i].constant != kIndexConstant) damaged(u"an index block does not look like one");
        if (index.columns.empty()) damaged(u"an index has no columns");
        for (const IndexColumn& part : index.columns) {
            if (part.column == table.columns.size()) damaged(u"an index names a column that does not exist");
        }
        if (index.root == 0 || index.root >= page_count) damaged(u"an index's root lies outside the file");
    }
    for (const LogicalIndex& index : table.logical_indexes) {
        if (index.real_index >= table.indexes.size()) damaged(u"an index name belongs to no index");
    }
}

}  // namespace

std::uint16_t ValueSize(const Column& column) {
    switch (column.type) {
        case ColumnType::Boolean:
            return 0;
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        default:
            return column.length;
    }
}

bool IsKnown(ColumnType type) {
    const auto number = static_cast<unsigned>(type);
    return (number >= 1 && number <= 12) || (number >= 15 && number <= 17);
}

TableDefinition ReadTableDefinition(PageFile& file, PageNumber page, TextView name) {
    const Damage damaged(file, page);
    DefinitionBlocks blocks;
    TableDefinition table = Take(file, page, name, blocks);
    if (table.column_capacity > kPageSize || table.variable_columns > table.column_capacity ||
        table.columns.size() > table.column_capacity) {
        damaged(u"the table definition has impossible numbers of columns");
    }
    for (const Column& column : table.columns) CheckColumn(damaged, table, column);
    PlaceColumns(damaged, table);
    CheckIndexes(damaged, blocks, table, file.PageCount());
    return table;
}

TableDefinition ReadTablePages(PageFile& file, PageNumber page, TextView name) {
    DefinitionBlocks blocks;
    return Take(file, page, name, blocks);
}

std::optional<std::size_t> TableDefinition::FindColumn(TextView column_name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (EqualNoCase(columns[i].name, column_name)) return i;
    }
    return std::nullopt;
}

}  // namespace tav::jet
