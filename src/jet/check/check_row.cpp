#include "jet/check/check_row.h"

#include <algorithm>

#include "jet/table/row.h"
#include "jet/table/text_compression.h"

namespace tav::jet::check {
namespace {

// Where the parts of a row stand.
struct Layout {
    std::size_t columns = 0;
    bool has_variables = false;
    std::size_t variables = 0;
    std::size_t mask = 0;     // offset of the null mask
    std::size_t trailer = 0;  // offset past which no value reaches
};

std::optional<Layout> FindParts(const TableDefinition& definition, Bytes row) {
    Layout parts;
    if (row.size() < 2) return std::nullopt;
    parts.columns = U16(row.data());
    const std::size_t mask_size = (parts.columns + 7) / 8;
    if (parts.columns > definition.column_capacity || row.size() < 2 + mask_size) return std::nullopt;
    parts.mask = parts.trailer = row.size() - mask_size;
    // A row from before the first of the variable columns has no part for them.
    const auto in_row = [&](const Column& column) {
        return column.type != ColumnType::Boolean && !column.IsFixed() && column.number < parts.columns;
    };
    parts.has_variables = std::ranges::any_of(definition.columns, in_row);
    if (!parts.has_variables) return parts;
    if (parts.mask < 6) return std::nullopt;
    parts.variables = U16(&row[parts.mask - 2]);
    if (parts.variables > definition.variable_columns || parts.mask < 6 + 2 * parts.variables) {
        return std::nullopt;
    }
    parts.trailer = parts.mask - 4 - 2 * parts.variables;
    return parts;
}

class RowCheck {
 public:
    RowCheck(CheckContext& context, const TableDefinition& definition, LongValueCheck& long_values, Bytes row,
             const Text& place)
        : context_(context), definition_(definition), long_values_(long_values), row_(row), place_(place) {}

    bool Run();

 private:
    bool Broken(TextView what) {
        context_.Error(16, place_ + Text(what));
        return false;
    }
    bool WrongValue(const Column& column, TextView what) {
        context_.Error(17, place_ + u"column " + column.name + u": " + Text(what));
        return false;
    }
    // Offset of a variable value; that of entry `variables` is the end of the last one.
    std::size_t VariableStart(std::size_t index) const { return U16(&row_[parts_.mask - 4 - 2 * index]); }
    bool IsPresent(const Column& column) const {
        return column.number < parts_.columns &&
               (row_[parts_.mask + column.number / 8] >> column.number % 8 & 1) != 0;
    }
    bool CheckOffsets();
    bool CheckColumn(const Column& column);
    bool CheckValue(const Column& column, Bytes value);
    bool CheckText(const Column& column, Bytes value);

    CheckContext& context_;
    const TableDefinition& definition_;
    LongValueCheck& long_values_;
    Bytes row_;
    const Text& place_;
    Layout parts_;
    std::size_t fixed_limit_ = 0;
};

bool RowCheck::CheckOffsets() {
    fixed_limit_ = parts_.trailer;
    if (!parts_.has_variables) return true;
    for (std::size_t i = 0; i < parts_.variables; ++i) {
        if (VariableStart(i) > VariableStart(i + 1)) return Broken(u"its variable values are out of order");
    }
    fixed_limit_ = VariableStart(0);
    if (fixed_limit_ < 2 || VariableStart(parts_.variables) > parts_.trailer) {
        return Broken(u"its variable values lie outside the row");
    }
    return true;
}

bool RowCheck::CheckColumn(const Column& column) {
    const bool present = IsPresent(column);
    if (column.type == ColumnType::Boolean) return true;
    if (column.IsFixed()) {
        if (!present) return true;
        const std::size_t begin = 2u + column.fixed_offset;
        if (begin + ValueSize(column) > fixed_limit_) {
            return Broken(u"the fixed column " + column.name + u" does not lie inside it");
        }
        return CheckValue(column, row_.subspan(begin, ValueSize(column)));
    }
    if (column.variable_index >= parts_.variables) return true;
    const std::size_t begin = VariableStart(column.variable_index);
    const std::size_t size = VariableStart(column.variable_index + 1u) - begin;
    if (present) return CheckValue(column, row_.subspan(begin, size));
    return size == 0 || Broken(u"the Null column " + column.name + u" has bytes");
}

bool RowCheck::CheckText(const Column& column, Bytes value) {
    const std::optional<tav::Text> text = DecodeText(value.data(), value.size());
    if (!text) return WrongValue(column, u"the text ends in the middle of a character");
    if (2 * text->size() > column.length) return WrongValue(column, u"the text is longer than the column");
    return true;
}

bool RowCheck::CheckValue(const Column& column, Bytes value) {
    switch (column.type) {
        case ColumnType::Text:
            return CheckText(column, value);
        case ColumnType::Memo:
        case ColumnType::Ole: {
            const tav::Text why = long_values_.Check(column, value);
            return why.empty() || WrongValue(column, why);
        }
        case ColumnType::Binary:
            return value.size() <= column.length ||
                   WrongValue(column, u"the value is longer than the column");
        case ColumnType::Internal:
            return true;
        default:
            break;
    }
    if (!IsKnown(column.type)) return true;
    if (value.size() != ValueSize(column)) return WrongValue(column, u"the value has a wrong length");
    if (column.type == ColumnType::Date && !IsDatabaseDate(tav::Date{DoubleAt(value.data())})) {
        return WrongValue(column, u"there is no such date");
    }
    return true;
}

bool RowCheck::Run() {
    const std::optional<Layout> parts = FindParts(definition_, row_);
    if (!parts) return Broken(u"its column counts do not agree with its length or its table");
    parts_ = *parts;
    if (!CheckOffsets()) return false;
    bool sound = true;
    for (const Column& column : definition_.columns) sound = CheckColumn(column) && sound;
    return sound;
}

}  // namespace

bool CheckRow(CheckContext& context, const CheckedTable& table, LongValueCheck& long_values, Bytes row,
              const Text& place) {
    return RowCheck(context, table.definition, long_values, row, place).Run();
}

}  // namespace tav::jet::check
