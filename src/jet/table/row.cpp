#include "jet/table/row.h"

#include <algorithm>

#include "common/concat.h"
#include "jet/file/page_file.h"
#include "jet/table/long_value.h"
#include "jet/table/numeric.h"
#include "jet/table/text_compression.h"

namespace tav::jet {
namespace {

constexpr double kFirstDate = -657434;  // 01.01.100
constexpr double kDateLimit = 2958466;  // the day after 31.12.9999

Binary AsBinary(std::span<const std::uint8_t> bytes) {
    return {std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size())};
}

}  // namespace

// A negative date's time of day runs away from zero.
bool IsDatabaseDate(Date date) {
    return date.serial > kFirstDate - 1 && date.serial < kDateLimit;
}

Row::Row(PageFile& file, const TableDefinition& definition, RowId id, std::span<const std::uint8_t> bytes)
    : file_(&file), definition_(&definition), id_(id), bytes_(bytes) {
    const auto damaged = [&](TextView reason) {
        file.Damaged(id.page, Concat(u"row ", Digits(id.slot), u" ", reason));
    };
    if (bytes.size() < 2) damaged(u"is too short");
    column_count_ = U16(bytes.data());
    if (column_count_ > definition.column_capacity) damaged(u"has more columns than its table");
    const std::size_t mask_size = (column_count_ + 7) / 8;
    if (bytes.size() < 2 + mask_size) damaged(u"is too short");
    mask_ = bytes.size() - mask_size;
    if (definition.variable_columns == 0 || mask_ < 6) return;
    variable_count_ = U16(bytes.data() + mask_ - 2);
    has_variable_part_ = variable_count_ <= definition.variable_columns && 6 + 2 * variable_count_ <= mask_;
}

void Row::Damaged(const Column& column, TextView reason) const {
    file_->Damaged(id_.page, Concat(u"row ", Digits(id_.slot), u", column '", column.name, u"' ", reason));
}

bool Row::IsPresent(const Column& column) const {
    return column.number < column_count_ &&
           (bytes_[mask_ + column.number / 8] >> (column.number % 8) & 1) != 0;
}

// Whether the column's variable index is in the row. A row from before the table's first variable column has
// no variable part at all, so its absence is damage only where a value should be in it.
bool Row::HasVariable(const Column& column) const {
    if (!has_variable_part_) Damaged(column, u"has no place: the row's variable part is damaged");
    return column.variable_index < variable_count_;
}

// The bytes of a present value.
std::span<const std::uint8_t> Row::StoredOf(const Column& column) const {
    if (column.IsFixed()) {
        const std::size_t begin = 2 + std::size_t{column.fixed_offset};
        if (begin + ValueSize(column) > mask_) Damaged(column, u"lies outside the row");
        return bytes_.subspan(begin, ValueSize(column));
    }
    const std::size_t limit = mask_ - 4 - 2 * variable_count_;
    const std::uint8_t* start = bytes_.data() + mask_ - 4 - 2 * std::size_t{column.variable_index};
    const std::size_t begin = U16(start);
    const std::size_t end = U16(start - 2);
    if (begin < 2 || begin > end || end > limit) Damaged(column, u"lies outside the row");
    return bytes_.subspan(begin, end - begin);
}

std::optional<std::span<const std::uint8_t>> Row::Stored(std::size_t position) const {
    const Column& column = definition_->columns[position];
    if (column.type == ColumnType::Boolean || !IsPresent(column)) return std::nullopt;
    if (!column.IsFixed() && !HasVariable(column)) return std::nullopt;
    return StoredOf(column);
}

std::optional<std::size_t> Row::FixedPlace(std::size_t position) const {
    const Column& column = definition_->columns[position];
    if (!column.IsFixed() || column.number >= column_count_) return std::nullopt;
    const std::size_t begin = 2 + std::size_t{column.fixed_offset};
    std::size_t end = mask_;
    if (definition_->variable_columns > 0) {
        if (!has_variable_part_) return std::nullopt;
        // The first variable value, or the end of none, follows the fixed area.
        end = std::min<std::size_t>(U16(bytes_.data() + mask_ - 4), mask_ - 4 - 2 * variable_count_);
    }
    return begin + ValueSize(column) <= end ? std::optional(begin) : std::nullopt;
}

Value Row::Get(std::size_t position) const {
    const Column& column = definition_->columns[position];
    if (column.type == ColumnType::Boolean) return IsPresent(column);
    const auto stored = Stored(position);
    return stored ? Decode(column, *stored) : Value();
}

Value Row::Decode(const Column& column, std::span<const std::uint8_t> stored) const {
    const std::uint8_t* at = stored.data();
    const bool sized = IsKnown(column.type) && !column.IsText() && column.type != ColumnType::Binary &&
                       column.type != ColumnType::Ole && column.type != ColumnType::Internal;
    if (sized && stored.size() != ValueSize(column)) Damaged(column, u"has a value of a wrong length");
    const auto text = [&](const std::uint8_t* bytes, std::size_t size) -> Value {
        std::optional<Text> decoded = DecodeText(bytes, size);
        if (!decoded) Damaged(column, u"has a text that ends in the middle of a character");
        return *std::move(decoded);
    };
    switch (column.type) {
        case ColumnType::Byte:
            return std::int64_t{*at};
        case ColumnType::Integer:
            return std::int64_t{static_cast<std::int16_t>(U16(at))};
        case ColumnType::Long:
            return std::int64_t{static_cast<std::int32_t>(U32(at))};
        case ColumnType::Currency:
            return Money{static_cast<std::int64_t>(U64(at))};
        case ColumnType::Single:
            return double{std::bit_cast<float>(U32(at))};
        case ColumnType::Double:
            return DoubleAt(at);
        case ColumnType::Date: {
            const Date date{DoubleAt(at)};
            if (!IsDatabaseDate(date)) Damaged(column, u"has an impossible date");
            return date;
        }
        case ColumnType::Numeric:
            return NumericValue(column, at);
        case ColumnType::Text:
            return text(at, stored.size());
        case ColumnType::Memo: {
            const LongValue value = Long(column, stored);
            return text(reinterpret_cast<const std::uint8_t*>(value.data.data()), value.data.size());
        }
        case ColumnType::Ole:
            return Binary{Long(column, stored).data};
        default:
            return AsBinary(stored);
    }
}

std::vector<Value> Row::All() const {
    std::vector<Value> values(definition_->columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = Get(i);
    return values;
}

LongValue Row::Long(const Column& column, std::span<const std::uint8_t> stored) const {
    LongValue value;
    if (const Text why = ReadLongValue(*file_, stored, value); !why.empty()) Damaged(column, why);
    return value;
}

std::vector<Pointer> Row::LongRecords(std::size_t position) const {
    const Column& column = definition_->columns[position];
    const auto stored = Stored(position);
    return column.IsLongValue() && stored ? Long(column, *stored).records : std::vector<Pointer>();
}

}  // namespace tav::jet
