#include "jet/definition_plan.h"

#include <algorithm>

#include "jet/definition_writer.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kGeneralSortOrder = 0x0409;
constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kNullable = 0x02;
constexpr std::uint8_t kSystemColumn = 0x10;
constexpr std::uint8_t kMasked = 0x20;
constexpr std::uint8_t kCompress = 0x01;

bool IsFixedType(ColumnType type) {
    return type == ColumnType::Boolean || SizeOfType(type) != 0;
}

std::uint16_t LengthOf(const ColumnPlan& column) {
    if (column.type == ColumnType::Boolean) return 1;
    if (IsFixedType(column.type)) return SizeOfType(column.type);
    return static_cast<std::uint16_t>(2 * column.characters);  // 0 for memo and OLE
}

void AddColumns(TableDefinition& table, const TablePlan& plan) {
    for (const ColumnPlan& planned : plan.columns) {
        Column column;
        column.name = planned.name;
        column.type = planned.type;
        column.number = table.column_capacity++;
        column.variable_index = table.variable_columns;
        column.length = LengthOf(planned);
        column.sort_order = kGeneralSortOrder;
        column.flags = kNullable;
        if (IsFixedType(column.type)) {
            column.flags |= kFixed;
            const std::uint16_t size = SizeOfType(column.type);
            if (size != 0) column.fixed_offset = table.fixed_size;
            table.fixed_size = static_cast<std::uint16_t>(table.fixed_size + size);
        } else {
            ++table.variable_columns;
        }
        table.columns.push_back(std::move(column));
    }
}

void AddIndexes(TableDefinition& table, const TablePlan& plan) {
    for (const IndexPlan& planned : plan.indexes) {
        RealIndex index;
        index.name = planned.name;
        for (const TextView column : planned.columns) {
            index.columns.push_back({table.FindColumn(column).value(), true});
        }
        index.primary = planned.primary;
        index.unique = index.required = planned.primary;

        const auto number = static_cast<std::uint32_t>(table.indexes.size());
        LogicalIndex logical{index.name, number, number, static_cast<std::uint8_t>(planned.primary), 0};
        table.logical_indexes.push_back(std::move(logical));
        table.indexes.push_back(std::move(index));
    }
    std::ranges::sort(table.logical_indexes,
                      [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
}

void AddLongValues(TableDefinition& table) {
    for (const Column& column : table.columns) {
        if (column.type == ColumnType::Memo || column.type == ColumnType::Ole) {
            table.long_values.push_back({column.number, {}, {}});
        }
    }
}

}  // namespace

TableDefinition PlanUserTable(const TablePlan& plan) {
    TableDefinition table;
    table.name = plan.name;
    AddColumns(table, plan);
    for (Column& column : table.columns) {
        if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
            column.extended_flags = kCompress;
        }
    }
    AddIndexes(table, plan);
    AddLongValues(table);
    return table;
}

TableDefinition PlanSystemTable(const SystemTablePlan& plan) {
    TableDefinition table;
    table.name = plan.table.name;
    table.system = true;
    AddColumns(table, plan.table);
    for (Column& column : table.columns) {
        column.flags |= kSystemColumn;
        if (HoldsSid(column.name)) column.flags |= kMasked;
    }
    std::ranges::sort(table.columns,
                      [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
    AddIndexes(table, plan.table);
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        const std::uint8_t flags = plan.index_flags[i];
        table.indexes[i].unique = (flags & 0x01) != 0;
        table.indexes[i].ignores_nulls = (flags & 0x02) != 0;
        table.indexes[i].required = (flags & 0x08) != 0;
    }
    AddLongValues(table);
    return table;
}

}  // namespace tav::jet
