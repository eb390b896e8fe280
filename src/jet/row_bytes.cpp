#include "jet/row_bytes.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "jet/definition_writer.h"

namespace tav::jet {
namespace {

void Append(std::string& out, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
}

std::string ValueBytes(const Column& column, const Value& value) {
    std::string bytes;
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        Append(bytes, static_cast<std::uint64_t>(*number), SizeOfType(column.type));
    } else if (const auto* date = std::get_if<Date>(&value)) {
        Append(bytes, std::bit_cast<std::uint64_t>(date->serial), 8);
    } else if (const auto* binary = std::get_if<Binary>(&value)) {
        bytes = binary->bytes;
    } else if (const auto* text = std::get_if<Text>(&value)) {
        for (const char16_t c : *text) Append(bytes, c, 2);
    }
    return bytes;
}

}  // namespace

std::string RowBytes(const TableDefinition& table, std::span<const Value> values) {
    std::string fixed(table.fixed_size, '\0');
    std::vector<std::string> variable(table.variable_columns);
    std::string mask((table.column_capacity + 7u) / 8, '\0');
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = table.columns[i];
        const bool* truth = std::get_if<bool>(&values[i]);
        if (truth != nullptr ? !*truth : IsNull(values[i])) continue;
        char& byte = mask[column.number / 8];
        byte = static_cast<char>(byte | 1 << column.number % 8);
        const std::string bytes = ValueBytes(column, values[i]);
        if (column.IsFixed()) {
            std::ranges::copy(bytes, fixed.begin() + column.fixed_offset);
        } else {
            variable[column.variable_index] = bytes;
        }
    }
    std::string row;
    Append(row, table.column_capacity, 2);
    row += fixed;
    if (!variable.empty()) {
        std::vector<std::size_t> starts;
        for (const std::string& value : variable) {
            starts.push_back(row.size());
            row += value;
        }
        Append(row, row.size(), 2);
        for (auto start = starts.rbegin(); start != starts.rend(); ++start) Append(row, *start, 2);
        Append(row, variable.size(), 2);
    }
    return row + mask;
}

}  // namespace tav::jet
