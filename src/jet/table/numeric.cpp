#include "jet/table/numeric.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/file/format.h"

namespace tav::jet {
namespace {

constexpr int kMoneyScale = 4;

// A number as decimal digits without a sign, the last `scale` of them decimals.
struct Decimal {
    bool negative = false;
    std::string digits;
    int scale = 0;
};

template <class Number>
std::string Written(Number number) {
    std::array<char, 400> text;  // a double has up to 309 digits before the point
    if constexpr (std::is_same_v<Number, double>) {
        return {text.data(),
                std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr};
    } else {
        return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
    }
}

Decimal DecimalOf(std::string text, int scale) {
    Decimal decimal;
    decimal.negative = text.starts_with('-');
    if (decimal.negative) text.erase(0, 1);
    if (const std::size_t point = text.find('.'); point != text.npos) {
        scale += static_cast<int>(text.size() - point - 1);
        text.erase(point, 1);
    }
    decimal.digits = std::move(text);
    decimal.scale = scale;
    return decimal;
}

// Gives the number that many decimals, rounded half to even.
void Rescale(Decimal& decimal, int scale) {
    if (decimal.scale <= scale) {
        decimal.digits.append(static_cast<std::size_t>(scale - decimal.scale), '0');
        decimal.scale = scale;
        return;
    }
    const auto cut = static_cast<std::size_t>(decimal.scale - scale);
    std::string& digits = decimal.digits;
    if (digits.size() <= cut) digits.insert(0, cut - digits.size() + 1, '0');
    const std::string rest = digits.substr(digits.size() - cut);
    digits.resize(digits.size() - cut);
    const std::string half = '5' + std::string(cut - 1, '0');
    const bool up = rest > half || (rest == half && (digits.back() - '0') % 2 != 0);
    decimal.scale = scale;
    if (!up) return;
    std::size_t at = digits.size();
    while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
    if (at == 0) {
        digits.insert(digits.begin(), '1');
    } else {
        ++digits[at - 1];
    }
}

Decimal DecimalOf(const Column& column, const Value& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return DecimalOf(Written(*whole), 0);
    if (const auto* money = std::get_if<Money>(&value)) {
        return DecimalOf(Written(money->ten_thousandths), kMoneyScale);
    }
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) throw Failure(RunTimeError::DataTypeMismatch, column.name);
    if (!std::isfinite(*number)) throw Failure(RunTimeError::Overflow, column.name);
    return DecimalOf(Written(*number), 0);
}

}  // namespace

double NumericValue(const Column& column, const std::uint8_t* bytes) {
    double value = 0;
    for (int word = 0; word < 4; ++word) value = value * 4294967296.0 + U32(bytes + 1 + 4 * word);
    value /= std::pow(10.0, column.scale());
    return (bytes[0] & 0x80) != 0 ? -value : value;
}

void AppendNumeric(std::string& out, const TableDefinition& table, const Column& column, const Value& value) {
    Decimal decimal = DecimalOf(column, value);
    Rescale(decimal, column.scale());
    decimal.digits.erase(0, decimal.digits.find_first_not_of('0'));
    if (decimal.digits.size() > static_cast<std::size_t>(column.precision())) {
        throw Failure(
            u"The decimal field's precision is too small to accept the numeric you attempted to add.")
            .In(Concat(table.name, u".", column.name));
    }
    std::array<std::uint32_t, 4> words{};  // the most significant first
    for (const char digit : decimal.digits) {
        std::uint64_t carry = static_cast<std::uint64_t>(digit - '0');
        for (std::size_t i = words.size(); i-- > 0;) {
            carry += std::uint64_t{words[i]} * 10;
            words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    out += decimal.negative && !decimal.digits.empty() ? '\x80' : '\0';
    for (const std::uint32_t word : words) {
        std::uint8_t bytes[4];
        PutU32(bytes, word);
        out.append(reinterpret_cast<const char*>(bytes), sizeof(bytes));
    }
}

}  // namespace tav::jet
