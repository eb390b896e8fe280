#include "jet/table/row_encoding.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/failure.h"
#include "jet/table/long_value.h"
#include "jet/table/row.h"
#include "jet/table/text_compression.h"

namespace tav::jet {
namespace {

constexpr std::size_t kLongestRow = 4060;

template <class Kind>
const Kind& As(const Column& column, const Value& value) {
    const Kind* kind = std::get_if<Kind>(&value);
    if (kind == nullptr) throw Failure(RunTimeError::DataTypeMismatch, column.name);
    return *kind;
}

// Appends `size` bytes of a number, the lowest first.
void AppendNumber(std::string& out, std::uint64_t number, std::size_t size) {
    std::uint8_t bytes[8];
    PutU64(bytes, number);
    out.append(reinterpret_cast<const char*>(bytes), size);
}

template <class Integer>
void AppendInteger(std::string& out, const Column& column, const Value& value) {
    const std::int64_t number = As<std::int64_t>(column, value);
    using Limits = std::numeric_limits<Integer>;
    if (number < Limits::min() || number > Limits::max()) throw Failure(RunTimeError::Overflow, column.name);
    AppendNumber(out, static_cast<std::uint64_t>(number), sizeof(Integer));
}

void AppendSingle(std::string& out, const Column& column, double number) {
    if (!(std::fabs(number) <= std::numeric_limits<float>::max())) {
        throw Failure(RunTimeError::Overflow, column.name);
    }
    AppendNumber(out, std::bit_cast<std::uint32_t>(static_cast<float>(number)), 4);
}

void AppendDouble(std::string& out, const Column& column, double number) {
    if (!std::isfinite(number)) throw Failure(RunTimeError::Overflow, column.name);
    AppendNumber(out, std::bit_cast<std::uint64_t>(number), 8);
}

void AppendDate(std::string& out, const Column& column, Date date) {
    if (!IsDatabaseDate(date)) throw Failure(RunTimeError::Overflow, column.name);
    AppendNumber(out, std::bit_cast<std::uint64_t>(date.serial), 8);
}

[[noreturn]] void RefuseText(const Column& column) {
    throw Failure(Text(u"A text that begins with U+FEFF cannot be stored in column '")
                      .append(column.name)
                      .append(u"'."));
}

void AppendTextValue(std::string& out, const Column& column, const Text& text) {
    const std::size_t limit = column.length / 2;
    if (text.size() > limit) throw Failure(kFieldTooSmall).In(column.name);
    if (!column.IsFixed()) {
        if (!AppendText(out, text, column.CompressesText())) RefuseText(column);
        return;
    }
    if (text.starts_with(u'\uFEFF')) RefuseText(column);
    AppendText(out, text, false);
    for (std::size_t i = text.size(); i < limit; ++i) AppendNumber(out, u' ', 2);
}

void AppendBinary(std::string& out, const Column& column, const std::string& bytes) {
    if (bytes.size() > column.length) throw Failure(kFieldTooSmall).In(column.name);
    const bool sized = column.IsFixed() || column.type == ColumnType::Guid;
    if (sized && bytes.size() != ValueSize(column)) {
        throw Failure(RunTimeError::DataTypeMismatch, column.name);
    }
    out += bytes;
}

void AppendLongValue(std::string& out, const Column& column, const Value& value) {
    std::string data;
    if (column.type == ColumnType::Ole) {
        data = As<Binary>(column, value).bytes;
    } else if (!AppendText(data, As<Text>(column, value), true)) {
        RefuseText(column);
    }
    if (data.size() > kLongestInlineValue) {
        throw Failure(Text(u"The value of column '")
                          .append(column.name)
                          .append(u"' is too long to be stored with its row, which is not supported."));
    }
    AppendInlineValue(out, data);
}

// The stored bytes of a value that is not Null.
void AppendStored(std::string& out, const Column& column, const Value& value) {
    switch (column.type) {
        case ColumnType::Byte:
            return AppendInteger<std::uint8_t>(out, column, value);
        case ColumnType::Integer:
            return AppendInteger<std::int16_t>(out, column, value);
        case ColumnType::Long:
            return AppendInteger<std::int32_t>(out, column, value);
        case ColumnType::Currency:
            return AppendNumber(out, static_cast<std::uint64_t>(As<Money>(column, value).ten_thousandths), 8);
        case ColumnType::Single:
            return AppendSingle(out, column, As<double>(column, value));
        case ColumnType::Double:
            return AppendDouble(out, column, As<double>(column, value));
        case ColumnType::Date:
            return AppendDate(out, column, As<Date>(column, value));
        case ColumnType::Text:
            return AppendTextValue(out, column, As<Text>(column, value));
        case ColumnType::Binary:
        case ColumnType::Guid:
            return AppendBinary(out, column, As<Binary>(column, value).bytes);
        case ColumnType::Memo:
        case ColumnType::Ole:
            return AppendLongValue(out, column, value);
        default:
            throw Failure(Text(u"Values of column '")
                              .append(column.name)
                              .append(u"' cannot be written: its type is not supported."));
    }
}

std::uint16_t Offset(const std::string& out) {
    return static_cast<std::uint16_t>(std::min<std::size_t>(out.size(), 0xFFFF));
}

void AppendFixedArea(const TableDefinition& definition, std::span<const Value> values, std::string& out) {
    out.append(definition.fixed_size, '\0');
    std::string stored;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = definition.columns[i];
        if (!column.IsFixed() || column.type == ColumnType::Boolean || IsNull(values[i])) continue;
        stored.clear();
        AppendStored(stored, column, values[i]);
        out.replace(2 + std::size_t{column.fixed_offset}, stored.size(), stored);
    }
}

void AppendVariableValues(const TableDefinition& definition, std::span<const Value> values,
                          std::string& out) {
    std::vector<std::uint16_t> starts;
    starts.reserve(definition.variable_columns);
    for (const std::size_t position : definition.variable_order) {
        starts.push_back(Offset(out));
        if (position == definition.columns.size() || IsNull(values[position])) continue;
        AppendStored(out, definition.columns[position], values[position]);
    }
    AppendNumber(out, Offset(out), 2);
    for (auto start = starts.rbegin(); start != starts.rend(); ++start) AppendNumber(out, *start, 2);
    AppendNumber(out, starts.size(), 2);
}

void AppendNullMask(const TableDefinition& definition, std::span<const Value> values, std::string& out) {
    const std::size_t mask = out.size();
    out.append((definition.column_capacity + 7u) / 8, '\0');
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = definition.columns[i];
        const bool boolean = column.type == ColumnType::Boolean;
        if (IsNull(values[i]) || (boolean && !As<bool>(column, values[i]))) continue;
        char& byte = out[mask + column.number / 8];
        byte = static_cast<char>(byte | 1 << column.number % 8);
    }
}

}  // namespace

void EncodeRow(const TableDefinition& definition, std::span<const Value> values, std::string& out) {
    out.clear();
    if (values.size() != definition.columns.size()) {
        throw Failure(u"Number of query values and destination fields are not the same.");
    }
    AppendNumber(out, definition.column_capacity, 2);
    AppendFixedArea(definition, values, out);
    if (definition.variable_columns > 0) AppendVariableValues(definition, values, out);
    AppendNullMask(definition, values, out);
    if (out.size() > kLongestRow) throw Failure(u"Record is too large.").In(definition.name);
}

}  // namespace tav::jet
