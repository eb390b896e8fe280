#include "jet/create/definition_plan.h"

#include <algorithm>

namespace tav::jet {
namespace {

constexpr std::uint16_t kGeneralSortOrder = 0x0409;
constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kNullable = 0x02;
constexpr std::uint8_t kSystemColumn = 0x10;
constexpr std::uint8_t kMasked = 0x20;
constexpr std::uint8_t kCompress = 0x01;

bool IsVariable(ColumnType type) {
    using enum ColumnType;
    return type == Text || type == Binary || type == Memo || type == Ole;
}

void AddColumns(TableDefinition& table, const TablePlan& plan) {
    for (const ColumnPlan& planned : plan.columns) {
        Column column;
        column.name = planned.name;
        column.type = planned.type;
        column.number = table.column_capacity++;
        column.variable_index = table.variable_columns;
        column.length = static_cast<std::uint16_t>(2 * planned.characters);
        column.sort_order = kGeneralSortOrder;
        column.flags = kNullable;
        if (IsVariable(column.type)) {
            ++table.variable_columns;
        } else {
            column.flags |= kFixed;
            const bool boolean = column.type == ColumnType::Boolean;
            const std::uint16_t size = ValueSize(column);
            column.length = boolean ? 1 : size;
            column.fixed_offset = boolean ? 0 : table.fixed_size;
            table.fixed_size = static_cast<std::uint16_t>(table.fixed_size + size);
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
        LogicalIndex logical{index.name, number, number, static_cast<std::uint8_t>(planned.primary), 0, 0};
        table.logical_indexes.push_back(std::move(logical));
        table.indexes.push_back(std::move(index));
    }
    std::ranges::sort(table.logical_indexes,
                      [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
}

// Once the columns have their order.
void OrderVariableColumns(TableDefinition& table) {
    table.variable_order.resize(table.variable_columns);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        if (!column.IsFixed()) table.variable_order[column.variable_index] = i;
    }
}

void AddLongValues(TableDefinition& table) {
    for (const Column& column : table.columns) {
        if (column.IsLongValue()) table.long_values.push_back({column.number, {}, {}});
    }
}

}  // namespace

TableDefinition PlanUserTable(const TablePlan& plan) {
    TableDefinition table;
    table.name = plan.name;
    AddColumns(table, plan);
    for (Column& column : table.columns) {
        if (column.IsText()) column.extended_flags = kCompress;
    }
    AddIndexes(table, plan);
    AddLongValues(table);
    OrderVariableColumns(table);
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
    OrderVariableColumns(table);
    return table;
}

}  // namespace tav::jet
