#include "sql/sql_value.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

#include "common/concat.h"
#include "common/failure.h"
#include "common/regional.h"
#include "sql/sql_collation.h"

namespace tav::jet {
namespace {

constexpr std::size_t kDateBytes = 8;
const std::string kBinaryMark(8, '\xFF');

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

Date DecodeDate(const unsigned char* bytes) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kDateBytes; ++i) bits = bits << 8 | bytes[i];
    bits = (bits >> 63) != 0 ? bits & ~(std::uint64_t{1} << 63) : ~bits;
    return {std::bit_cast<double>(bits)};
}

double AsDouble(Money money) {
    return static_cast<double>(money.ten_thousandths) / 1e4;
}

int Size(std::size_t size) {
    if (size > 1U << 30) throw Failure(RunTimeError::OutOfMemory);
    return static_cast<int>(size);
}

// A number that is whole is an integer: a column's index is searched by its own kind.
Value WholeIfPossible(double number) {
    if (std::fabs(number) < 9e15 && number == std::trunc(number)) return static_cast<std::int64_t>(number);
    return number;
}

std::optional<double> NumberOf(const Value& value) {
    return std::visit(
        Overloaded{[](std::int64_t whole) -> std::optional<double> { return static_cast<double>(whole); },
                   [](double number) -> std::optional<double> { return number; },
                   [](bool flag) -> std::optional<double> { return flag ? -1 : 0; },
                   [](Money money) -> std::optional<double> { return AsDouble(money); },
                   [](Date date) -> std::optional<double> { return date.serial; },
                   [](const Text& text) { return ParseNumber(text); },
                   [](const auto&) -> std::optional<double> { return std::nullopt; }},
        value);
}

std::optional<Value> Converted(const Column& column, const Value& literal) {
    const std::optional<double> number = NumberOf(literal);
    switch (column.type) {
        case ColumnType::Text:
        case ColumnType::Memo:
            return ValueText(literal);
        case ColumnType::Date:
            if (const Text* text = std::get_if<Text>(&literal)) {
                const std::optional<Date> date = ParseDate(*text);
                return date ? std::optional<Value>(*date) : std::nullopt;
            }
            return number ? std::optional<Value>(Date{*number}) : std::nullopt;
        case ColumnType::Boolean:
            if (!number) return std::nullopt;
            return Value(std::int64_t{*number != 0 ? -1 : 0});
        case ColumnType::Single:
            return number ? std::optional<Value>(double{static_cast<float>(*number)}) : std::nullopt;
        case ColumnType::Binary:
        case ColumnType::Ole:
        case ColumnType::Guid:
            return std::nullopt;
        default:
            return number ? std::optional<Value>(WholeIfPossible(*number)) : std::nullopt;
    }
}

}  // namespace

DateBlob EncodeDate(Date date) {
    // Both zeros are one moment.
    std::uint64_t bits = std::bit_cast<std::uint64_t>(date.serial == 0 ? 0.0 : date.serial);
    bits = (bits >> 63) != 0 ? ~bits : bits | std::uint64_t{1} << 63;
    DateBlob blob;
    for (std::size_t i = 0; i < kDateBytes; ++i) blob[i] = static_cast<unsigned char>(bits >> (56 - 8 * i));
    return blob;
}

void TakeText(sqlite3_value* value, Text& out) {
    const void* text = sqlite3_value_text16(value);
    const auto bytes = static_cast<std::size_t>(sqlite3_value_bytes16(value));
    out.resize(bytes / sizeof(char16_t));
    if (!out.empty())
        std::memcpy(out.data(), text, out.size() * sizeof(char16_t));  // it may begin at an odd address
}

Value FromSqlite(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            return std::int64_t{sqlite3_value_int64(value)};
        case SQLITE_FLOAT:
            return sqlite3_value_double(value);
        case SQLITE_TEXT: {
            Text text;
            TakeText(value, text);
            return text;
        }
        case SQLITE_BLOB: {
            const auto* bytes = static_cast<const unsigned char*>(sqlite3_value_blob(value));
            const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
            if (size == kDateBytes && bytes[0] != 0xFF) return DecodeDate(bytes);
            return Binary{std::string(bytes + std::min(size, kBinaryMark.size()), bytes + size)};
        }
        default:
            return Null();
    }
}

Value AsResult(Value value) {
    if (const bool* flag = std::get_if<bool>(&value)) return std::int64_t{*flag ? -1 : 0};
    if (const Money* money = std::get_if<Money>(&value)) return AsDouble(*money);
    const double* number = std::get_if<double>(&value);
    if (number != nullptr && std::isnan(*number)) return Null();
    return value;
}

void SetResult(sqlite3_context* context, const Value& value) {
    const auto blob = [&](const void* bytes, std::size_t size) {
        sqlite3_result_blob(context, bytes, Size(size), SQLITE_TRANSIENT);
    };
    std::visit(Overloaded{[&](Null) { sqlite3_result_null(context); },
                          [&](bool flag) { sqlite3_result_int(context, flag ? -1 : 0); },
                          [&](std::int64_t whole) { sqlite3_result_int64(context, whole); },
                          [&](double number) { sqlite3_result_double(context, number); },
                          [&](Money money) { sqlite3_result_double(context, AsDouble(money)); },
                          [&](Date date) { blob(EncodeDate(date).data(), kDateBytes); },
                          [&](const Text& text) {
                              sqlite3_result_text16(context, text.data(),
                                                    Size(text.size() * sizeof(char16_t)), SQLITE_TRANSIENT);
                          },
                          [&](const Binary& binary) {
                              const std::string bytes = kBinaryMark + binary.bytes;
                              blob(bytes.data(), bytes.size());
                          }},
               value);
}

void Bind(sqlite3_stmt* statement, int parameter, const Value& value) {
    const int result = std::visit(
        Overloaded{[&](Null) { return sqlite3_bind_null(statement, parameter); },
                   [&](bool flag) { return sqlite3_bind_int(statement, parameter, flag ? -1 : 0); },
                   [&](std::int64_t whole) { return sqlite3_bind_int64(statement, parameter, whole); },
                   [&](double number) { return sqlite3_bind_double(statement, parameter, number); },
                   [&](Money money) { return sqlite3_bind_double(statement, parameter, AsDouble(money)); },
                   [&](Date date) {
                       return sqlite3_bind_blob(statement, parameter, EncodeDate(date).data(), kDateBytes,
                                                SQLITE_TRANSIENT);
                   },
                   [&](const Text& text) {
                       return sqlite3_bind_text16(statement, parameter, text.data(),
                                                  Size(text.size() * sizeof(char16_t)), SQLITE_STATIC);
                   },
                   [&](const Binary& binary) {
                       const std::string bytes = kBinaryMark + binary.bytes;
                       return sqlite3_bind_blob(statement, parameter, bytes.data(), Size(bytes.size()),
                                                SQLITE_TRANSIENT);
                   }},
        value);
    if (result != SQLITE_OK) throw Failure(RunTimeError::OutOfMemory);
}

Value ForComparison(const Column& column, Value literal) {
    if (column.IsText() && std::holds_alternative<Text>(literal)) return literal;
    std::optional<Value> converted = Converted(column, literal);
    if (converted) return *std::move(converted);
    throw Failure(RunTimeError::DataTypeMismatch, Concat(column.name, u" = '", ValueText(literal), u"'"));
}

std::optional<Value> ForIndex(const Column& column, const Value& value) {
    switch (column.type) {
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long: {
            const auto* whole = std::get_if<std::int64_t>(&value);
            const std::int64_t limit = column.type == ColumnType::Byte      ? 0
                                       : column.type == ColumnType::Integer ? INT16_MIN
                                                                            : INT32_MIN;
            const std::int64_t most = limit == 0 ? 255 : -limit - 1;
            return whole != nullptr && *whole >= limit && *whole <= most ? std::optional(value)
                                                                         : std::nullopt;
        }
        case ColumnType::Double: {
            const bool number =
                std::holds_alternative<double>(value) || std::holds_alternative<std::int64_t>(value);
            // Both zeros are equal, but have keys of their own.
            if (!number || *NumberOf(value) == 0) return std::nullopt;
            return *NumberOf(value);
        }
        case ColumnType::Date:
            return std::holds_alternative<Date>(value) ? std::optional(value) : std::nullopt;
        case ColumnType::Text:
            return std::holds_alternative<Text>(value) ? std::optional(value) : std::nullopt;
        default:
            return std::nullopt;  // rare as a key; the hash serves it
    }
}

std::uint64_t HashValue(const Value& value) {
    constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15;
    const auto mixed = [](double number, std::uint64_t kind) {
        const std::uint64_t bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number) * kMix;
        return (bits ^ bits >> 32) + kind;
    };
    if (const Text* text = std::get_if<Text>(&value)) return CollationHash(*text);
    if (const Date* date = std::get_if<Date>(&value)) return mixed(date->serial, 1);
    if (const Binary* binary = std::get_if<Binary>(&value)) return std::hash<std::string>()(binary->bytes);
    return mixed(NumberOf(value).value_or(0), 2);
}

}  // namespace tav::jet
