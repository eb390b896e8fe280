#include "jet/table/row_encoding.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/table/long_value.h"
#include "jet/table/numeric.h"
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
    throw Failure(Concat(u"A text that begins with U+FEFF cannot be stored in column '", column.name, u"'."));
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

// Of any value but a long one.
void AppendShortValue(std::string& out, const TableDefinition& table, const Column& column,
                      const Value& value) {
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
        case ColumnType::Numeric:
            return AppendNumeric(out, table, column, value);
        default:
            throw Failure(Concat(u"Values of column '", column.name,
                                 u"' cannot be written: its type is not supported."));
    }
}

std::uint16_t Offset(const std::string& out) {
    return static_cast<std::uint16_t>(std::min<std::size_t>(out.size(), 0xFFFF));
}

class RowEncoder {
 public:
    // Longer data than `inline_limit` goes outside the row.
    RowEncoder(const TableDefinition& table, std::span<const Value> values, const OldRow& old,
               EncodedRow& row, std::size_t inline_limit)
        : table_(table),
          values_(values),
          old_(old),
          row_(row),
          out_(row.bytes),
          inline_limit_(inline_limit) {}

    void Encode() {
        out_.clear();
        row_.distant.clear();
        AppendNumber(out_, table_.column_capacity, 2);
        FixedArea();
        if (table_.variable_columns > 0) VariableValues();
        NullMask();
    }

 private:
    void FixedArea() {
        out_.append(table_.fixed_size, '\0');
        std::string stored;
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const Column& column = table_.columns[i];
            if (!column.IsFixed() || column.type == ColumnType::Boolean || IsNull(values_[i])) continue;
            stored.clear();
            AppendStored(stored, i);
            out_.replace(2 + std::size_t{column.fixed_offset}, stored.size(), stored);
        }
    }

    void VariableValues() {
        std::vector<std::uint16_t> starts;
        starts.reserve(table_.variable_columns);
        for (const std::size_t position : table_.variable_order) {
            starts.push_back(Offset(out_));
            if (position == table_.columns.size() || IsNull(values_[position])) continue;
            AppendStored(out_, position);
        }
        AppendNumber(out_, Offset(out_), 2);
        for (auto start = starts.rbegin(); start != starts.rend(); ++start) AppendNumber(out_, *start, 2);
        AppendNumber(out_, starts.size(), 2);
    }

    void NullMask() {
        const std::size_t mask = out_.size();
        out_.append((table_.column_capacity + 7u) / 8, '\0');
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const Column& column = table_.columns[i];
            const bool boolean = column.type == ColumnType::Boolean;
            if (IsNull(values_[i]) || (boolean && !As<bool>(column, values_[i]))) continue;
            char& byte = out_[mask + column.number / 8];
            byte = static_cast<char>(byte | 1 << column.number % 8);
        }
    }

    // The stored bytes of a value that is not Null.
    void AppendStored(std::string& out, std::size_t position) {
        if (Keep(out, position)) return;
        if (table_.columns[position].IsLongValue()) return LongValueOf(position);
        AppendShortValue(out, table_, table_.columns[position], values_[position]);
    }

    bool Keep(std::string& out, std::size_t position) const {
        if (!old_.Keeps(position, values_[position])) return false;
        const auto stored = old_.row->Stored(position);
        const bool moves_out = stored && table_.columns[position].IsLongValue() && inline_limit_ == 0 &&
                               old_.row->LongRecords(position).empty();
        if (!stored || moves_out) return false;
        out.append(reinterpret_cast<const char*>(stored->data()), stored->size());
        return true;
    }

    void LongValueOf(std::size_t position) {
        const Column& column = table_.columns[position];
        std::string data;
        if (column.type == ColumnType::Ole) {
            data = As<Binary>(column, values_[position]).bytes;
        } else if (!AppendText(data, As<Text>(column, values_[position]), true)) {
            RefuseText(column);
        }
        if (data.size() <= inline_limit_) return AppendInlineValue(out_, data);
        if (data.size() > kLongestValue) throw Failure(kFieldTooSmall).In(column.name);
        row_.distant.push_back({position, out_.size(), std::move(data)});
        out_.append(kLongValueHead, '\0');
    }

    const TableDefinition& table_;
    std::span<const Value> values_;
    const OldRow& old_;
    EncodedRow& row_;
    std::string& out_;
    std::size_t inline_limit_;
};

[[noreturn]] void RefuseValue(const TableDefinition& table, const Column& column, TextView why) {
    throw Failure(Concat(u"The field '", table.name, u".", column.name, u"' ", why));
}

void RefuseMissing(const TableDefinition& table, std::span<const Value> values, const OldRow& old) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = table.columns[i];
        if (column.required && column.type != ColumnType::Boolean && IsNull(values[i])) {
            RefuseValue(table, column,
                        u"cannot contain a Null value because the Required property for this field is set to "
                        u"True. Enter a value in this field.");
        }
        const auto* text = column.refuses_empty ? std::get_if<Text>(&values[i]) : nullptr;
        if (text != nullptr && text->empty() && !old.Keeps(i, values[i])) {
            RefuseValue(table, column, u"cannot be a zero-length string.");
        }
    }
}

}  // namespace

void AppendFixedValue(std::string& out, const TableDefinition& table, const Column& column,
                      const Value& value) {
    if (IsNull(value)) {
        out.append(ValueSize(column), '\0');
    } else {
        AppendShortValue(out, table, column, value);
    }
}

void EncodeRow(const TableDefinition& definition, std::span<const Value> values, EncodedRow& out,
               const OldRow& old) {
    if (values.size() != definition.columns.size()) {
        throw Failure(u"Number of query values and destination fields are not the same.");
    }
    RefuseMissing(definition, values, old);
    // Many long values that would each go into the row may be too much for it together.
    for (const std::size_t inline_limit : {kLongestInlineValue, std::size_t{0}}) {
        RowEncoder(definition, values, old, out, inline_limit).Encode();
        if (out.bytes.size() <= kLongestRow) return;
        if (definition.long_values.empty()) break;
    }
    throw Failure(u"Record is too large.").In(definition.name);
}

}  // namespace tav::jet
