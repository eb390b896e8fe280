#include "exports/value_text.h"

#include <array>
#include <charconv>

#include "common/concat.h"

namespace tav {

std::string IsoDate(Date date) {
    const CivilDate day = CivilFromDate(date);
    Text text = Concat(Digits(day.year, 4), u"-", Digits(day.month, 2), u"-", Digits(day.day, 2));
    const ClockTime time = TimeFromDate(date);
    if (time.hour != 0 || time.minute != 0 || time.second != 0) {
        text +=
            Concat(u" ", Digits(time.hour, 2), u":", Digits(time.minute, 2), u":", Digits(time.second, 2));
    }
    return ToUtf8(text);
}

std::string HexDigits(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out;
    out.reserve(2 * bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15U];
    }
    return out;
}

std::string NumberText(double number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return std::string(digits.data(), end);
}

std::string MoneyText(Money money) {
    constexpr std::uint64_t kUnit = 10'000;
    const bool negative = money.ten_thousandths < 0;
    const auto stored = static_cast<std::uint64_t>(money.ten_thousandths);
    const std::uint64_t amount = negative ? 0 - stored : stored;
    std::string text = (negative ? "-" : "") + std::to_string(amount / kUnit);
    if (amount % kUnit == 0) return text;
    text += "." + std::to_string(kUnit + amount % kUnit).substr(1);
    return text.substr(0, text.find_last_not_of('0') + 1);
}

std::string WholeUtf8(TextView text) {
    Text whole(text);
    bool paired = false;  // the character is the second half of a pair
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const bool second = whole[i] >= 0xDC00 && whole[i] <= 0xDFFF;
        if (second && !paired) whole[i] = 0xFFFD;
        paired = whole[i] >= 0xD800 && whole[i] <= 0xDBFF;
    }
    return ToUtf8(whole);  // which sees to first halves
}

}  // namespace tav
