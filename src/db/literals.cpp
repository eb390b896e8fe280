#include "db/literals.h"

#include <cmath>

#include "common/concat.h"
#include "common/guard.h"
#include "common/regional.h"

namespace tav {
namespace {

constexpr TextView kPoint = u".";
constexpr TextView kNoBreakSpace = u"\u00A0";

// Empty until it is known.
TextView& DecimalSeparator() {
    static TextView separator;
    return separator;
}

void FindDecimalSeparator() {
    const auto probe = ParseNumber(u"1,2");
    if (!probe) {
        DecimalSeparator() = kPoint;
    } else if (static_cast<float>(*probe) == 1.2F) {
        DecimalSeparator() = u",";
    }
}

struct DateRange {
    Date begin;
    Date end;
};

DateRange& RecordedRange() {
    static DateRange range;
    return range;
}

Date DateOf(TextView text) {
    const auto date = ParseDate(text);
    if (!date) throw Failure(RunTimeError::TypeMismatch, text);
    return *date;
}

Text DaysFrom(Date date, int days) {
    return FormatDate(Date{date.serial + days});
}

// Without memory there is no default either: whoever called would go on with a value that is wrong.
template <class Body>
void Defaulting(TextView title, Body body) {
    GuardedBy(body, [&](const Failure& failure) {
        if (failure.error() == RunTimeError::OutOfMemory) throw;
        ShowFailure(title, failure);
    });
}

bool BetweenDates(Text& text, TextView mode) {
    if (text.empty()) return false;
    const Date date = DateOf(text);
    if (mode == u"-1") {
        text = DaysFrom(date, -1);
        return false;
    }
    const bool before = mode == u"-";
    const bool after = mode == u"+";
    DateRange& range = RecordedRange();
    if (!mode.empty() && !before && !after) {
        range = {date, DateOf(mode)};
        return range.begin < range.end;
    }
    if (date < range.begin || range.end < date) return false;
    if (before) text = DaysFrom(range.begin, -1);
    if (after) text = DaysFrom(range.end, 1);
    return true;
}

}  // namespace

Value isn(const Value& value) {
    Value result = std::int64_t{0};
    Defaulting(u"Ошибка в функции isn", [&] {
        if (!IsNull(value)) result = value;
    });
    return result;
}

std::optional<std::int64_t> WholeNumberOf(const Value& value) {
    constexpr double kExact = 9007199254740992;  // whole numbers below are exact
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr || !(std::abs(*number) <= kExact) || *number != std::trunc(*number))
        return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

Text isns(const Value& value) {
    Text result;
    Defaulting(u"Ошибка в функции isns", [&] { result = ValueText(value); });
    return result;
}

Text sns(TextView text) {
    Text result;
    Defaulting(u"Ошибка в функции sns",
               [&] { result = text.empty() ? Text(u"Null") : Concat(u"'", text, u"'"); });
    return result;
}

Text snsi(TextView text) {
    Text result;
    Defaulting(u"Ошибка в функции snsi",
               [&] { result = text.empty() || text == u"-" ? TextView(u"Null") : text; });
    return result;
}

Text ToLocalNumber(TextView text) {
    if (DecimalSeparator().empty()) FindDecimalSeparator();
    Text result;
    result.reserve(text.size());
    const bool comma = DecimalSeparator() == u",";
    for (const char16_t c : text) {
        if (c != kNoBreakSpace.front()) result += comma && c == kPoint.front() ? u',' : c;
    }
    return result;
}

bool datebetween(Text& date, TextView mode) {
    bool result = false;
    Defaulting(u"Ошибка в функции datebetween", [&] { result = BetweenDates(date, mode); });
    return result;
}

}  // namespace tav
