#include "common/regional.h"

#include <array>
#include <charconv>
#include <cmath>

#include "common/concat.h"
#include "common/regional_form.h"

namespace tav {
namespace {

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsGroupBlank(char16_t c) {
    return c == u' ' || c == u'\u00A0';
}
bool IsGroup(char16_t c) {
    return IsGroupBlank(c) || c == CurrentRegionalForm().group;
}

// The text as an ASCII number with a decimal point, or empty when it is no number.
std::string PlainNumber(TextView text) {
    while (!text.empty() && IsGroupBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsGroupBlank(text.back())) text.remove_suffix(1);
    const char16_t decimal = CurrentRegionalForm().decimal;
    std::string out;
    bool digits = false;
    bool point = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (IsDigit(c)) {
            digits = true;
            out += static_cast<char>(c);
        } else if (i == 0 && (c == u'-' || c == u'+')) {
            if (c == u'-') out += '-';
        } else if (c == decimal && !point) {
            point = true;
            out += '.';
        } else if (!IsGroup(c) || point) {
            return {};
        }
    }
    return digits ? out : std::string();
}

// "-1 234,50" of "1234" and "50"; no line breaks at the
// space between groups. An amount of nothing has no sign.
Text GroupedAmount(std::string_view whole, std::string_view decimals, bool negative) {
    const auto is_zero = [](std::string_view digits) { return digits.find_first_not_of('0') == digits.npos; };
    Text text;
    if (negative && !(is_zero(whole) && is_zero(decimals))) text += u'-';
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) text += u'\u00A0';
        text += static_cast<char16_t>(whole[i]);
    }
    text += CurrentRegionalForm().decimal;
    return text.append(decimals.begin(), decimals.end());
}

}  // namespace

std::optional<double> ParseNumber(TextView text) {
    const std::string plain = PlainNumber(text);
    if (plain.empty()) return std::nullopt;
    double number = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (error != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
    return number;
}

std::optional<Money> ParseMoney(TextView text) {
    const std::string plain = PlainNumber(text);
    if (plain.empty()) return std::nullopt;
    const bool negative = plain.front() == '-';
    const std::string_view digits = std::string_view(plain).substr(negative ? 1 : 0);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::string_view fraction = point < digits.size() ? digits.substr(point + 1) : std::string_view();
    constexpr std::int64_t kLimit = INT64_MAX / 10 - 1;
    std::int64_t amount = 0;
    const auto take = [&](char digit) {
        if (amount > kLimit) return false;
        amount = amount * 10 + (digit - '0');
        return true;
    };
    for (const char digit : digits.substr(0, point)) {
        if (!take(digit)) return std::nullopt;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        if (!take(i < fraction.size() ? fraction[i] : '0')) return std::nullopt;
    }
    if (fraction.size() > 4) {
        const bool above =
            fraction[4] > '5' || (fraction[4] == '5' && fraction.find_first_not_of('0', 5) != fraction.npos);
        const bool half = fraction[4] == '5' && !above;
        if (above || (half && amount % 2 != 0)) ++amount;
    }
    return Money{negative ? -amount : amount};
}

std::optional<std::int64_t> ParseInteger(TextView text) {
    const std::string plain = PlainNumber(text);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (plain.empty() || error != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
    return number;
}

std::optional<Date> ParseDate(TextView text) {
    text = Trim(text);
    std::array<int, 3> fields{};
    std::size_t year_digits = 0;
    for (std::size_t field = 0; field < 3; ++field) {
        std::size_t digits = 0;
        for (; digits < text.size() && IsDigit(text[digits]); ++digits) {
            if (digits == 4) return std::nullopt;
            fields[field] = fields[field] * 10 + (text[digits] - u'0');
        }
        const bool last = field == 2;
        if (digits == 0 || (!last && digits > 2)) return std::nullopt;
        if (last) year_digits = digits;
        text.remove_prefix(digits);
        if (last ? !text.empty() : !text.starts_with(u'.')) return std::nullopt;
        if (!last) text.remove_prefix(1);
    }
    if (year_digits <= 2) fields[2] += fields[2] < 30 ? 2000 : 1900;
    return DateFromCivil({fields[2], fields[1], fields[0]});
}

Text FormatDate(Date date) {
    const CivilDate day = CivilFromDate(date);
    Text text = Concat(Digits(day.day, 2), u".", Digits(day.month, 2), u".", Digits(day.year, 4));
    if (date.serial != std::trunc(date.serial)) {
        const ClockTime time = TimeFromDate(date);
        text +=
            Concat(u" ", Digits(time.hour, 2), u":", Digits(time.minute, 2), u":", Digits(time.second, 2));
    }
    return text;
}

Text FormatNumber(double number) {
    std::array<char, 400> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed);
    Text text(buffer.data(), end);
    for (char16_t& c : text) {
        if (c == u'.') c = CurrentRegionalForm().decimal;
    }
    return text == u"-0" ? Text(u"0") : text;
}

Text FormatAmount(double amount) {
    std::array<char, 400> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(amount),
                                            std::chars_format::fixed, 2);
    const std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t whole = digits.size() - 3;
    return GroupedAmount(digits.substr(0, whole), digits.substr(whole + 1), amount < 0);
}

Text FormatAmount(Money amount) {
    const bool negative = amount.ten_thousandths < 0;
    const auto bits = static_cast<std::uint64_t>(amount.ten_thousandths);
    const std::uint64_t hundredths = ((negative ? 0 - bits : bits) + 50) / 100;
    const std::string decimals = std::to_string(100 + hundredths % 100).substr(1);
    return GroupedAmount(std::to_string(hundredths / 100), decimals, negative);
}

Text ValueText(const Value& value) {
    struct Converter {
        Text operator()(const Null&) const { return {}; }
        Text operator()(bool flag) const { return flag ? u"-1" : u"0"; }
        Text operator()(std::int64_t number) const { return Digits(number); }
        Text operator()(double number) const { return FormatNumber(number); }
        Text operator()(const Money& money) const {
            return FormatNumber(static_cast<double>(money.ten_thousandths) / 1e4);
        }
        Text operator()(const Date& date) const { return FormatDate(date); }
        Text operator()(const Text& text) const { return text; }
        Text operator()(const Binary& binary) const { return Text(binary.bytes.begin(), binary.bytes.end()); }
    };
    return std::visit(Converter(), value);
}

}  // namespace tav
