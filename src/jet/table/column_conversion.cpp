#include "jet/table/column_conversion.h"

#include <cmath>
#include <limits>

#include "common/concat.h"
#include "common/failure.h"
#include "common/regional.h"
#include "jet/table/row.h"
#include "jet/table/row_encoding.h"

namespace tav::jet {
namespace {

constexpr double kMoneyUnits = 10000;

Text Describe(const Column& column, const Value& value) {
    return Concat(column.name, u" = '", ValueText(value), u"'");
}

[[noreturn]] void Mismatch(const Column& column, const Value& value) {
    throw Failure(RunTimeError::DataTypeMismatch, Describe(column, value));
}
[[noreturn]] void Overflow(const Column& column, const Value& value) {
    throw Failure(RunTimeError::Overflow, Describe(column, value));
}

// A value as a number: dates are their serial, booleans -1 and 0.
double Number(const Column& column, const Value& value) {
    struct Converter {
        std::optional<double> operator()(bool flag) const { return flag ? -1 : 0; }
        std::optional<double> operator()(std::int64_t number) const { return static_cast<double>(number); }
        std::optional<double> operator()(double number) const { return number; }
        std::optional<double> operator()(const Money& money) const {
            return static_cast<double>(money.ten_thousandths) / kMoneyUnits;
        }
        std::optional<double> operator()(const Date& date) const { return date.serial; }
        std::optional<double> operator()(const Text& text) const { return ParseNumber(text); }
        std::optional<double> operator()(const Null&) const { return std::nullopt; }
        std::optional<double> operator()(const Binary&) const { return std::nullopt; }
    };
    const std::optional<double> number = std::visit(Converter(), value);
    if (!number) Mismatch(column, value);
    if (!std::isfinite(*number)) Overflow(column, value);
    return *number;
}

// A number rounded half to even, as integer columns take it.
template <class Integer>
std::int64_t Whole(const Column& column, const Value& value) {
    using Limits = std::numeric_limits<Integer>;
    const double number = std::nearbyint(Number(column, value));
    if (number < static_cast<double>(Limits::min()) || number > static_cast<double>(Limits::max())) {
        Overflow(column, value);
    }
    return static_cast<std::int64_t>(number);
}

Value ToMoney(const Column& column, const Value& value) {
    if (const Text* text = std::get_if<Text>(&value)) {
        if (const std::optional<Money> money = ParseMoney(*text)) return *money;
    }
    if (std::holds_alternative<Money>(value)) return value;
    const double amount = std::nearbyint(Number(column, value) * kMoneyUnits);
    if (std::fabs(amount) >= 9.2e18) Overflow(column, value);
    return Money{static_cast<std::int64_t>(amount)};
}

// A text with few decimals is exact as an amount; the number nearest to it might not be.
Value ToDecimal(const Column& column, const Value& value) {
    if (const Text* text = std::get_if<Text>(&value)) {
        constexpr int kMoneyDecimals = 4;
        const std::optional<Money> money = ParseMoney(*text);
        if (money && column.scale() <= kMoneyDecimals) return *money;
    }
    const bool exact = std::holds_alternative<Money>(value) || std::holds_alternative<std::int64_t>(value);
    return exact ? value : Value(Number(column, value));
}

Value ToDate(const Column& column, const Value& value) {
    if (const Text* text = std::get_if<Text>(&value)) {
        const std::optional<Date> date = ParseDate(*text);
        if (!date) Mismatch(column, value);
        return *date;
    }
    const Date date{Number(column, value)};
    if (!IsDatabaseDate(date)) Overflow(column, value);
    return date;
}

Value ToSingle(const Column& column, const Value& value) {
    const double number = Number(column, value);
    if (std::fabs(number) > std::numeric_limits<float>::max()) Overflow(column, value);
    return double{static_cast<float>(number)};
}

Value ToText(const Column& column, const Value& value) {
    if (std::holds_alternative<Binary>(value)) Mismatch(column, value);
    Text text = ValueText(value);
    if (column.type == ColumnType::Text && text.size() > column.length / 2) {
        throw Failure(kFieldTooSmall).In(column.name);
    }
    return text;
}

}  // namespace

Value ConvertForColumn(const Column& column, const Value& value) {
    if (IsNull(value)) return value;
    switch (column.type) {
        case ColumnType::Boolean:
            return Number(column, value) != 0;
        case ColumnType::Byte:
            return Whole<std::uint8_t>(column, value);
        case ColumnType::Integer:
            return Whole<std::int16_t>(column, value);
        case ColumnType::Long:
            return Whole<std::int32_t>(column, value);
        case ColumnType::Currency:
            return ToMoney(column, value);
        case ColumnType::Single:
            return ToSingle(column, value);
        case ColumnType::Double:
            return Number(column, value);
        case ColumnType::Numeric:
            return ToDecimal(column, value);
        case ColumnType::Date:
            return ToDate(column, value);
        case ColumnType::Text:
        case ColumnType::Memo:
            return ToText(column, value);
        default:
            if (!std::holds_alternative<Binary>(value)) Mismatch(column, value);
            return value;
    }
}

}  // namespace tav::jet
