#include "reports/summary_choice.h"

namespace tav {
namespace {

// A damaged file may hold any number where a date belongs.
std::optional<std::int32_t> DayOf(const Value& value) {
    static const double first = DateFromCivil({100, 1, 1})->serial;
    static const double last = DateFromCivil({9999, 12, 31})->serial;
    const Date* date = std::get_if<Date>(&value);
    if (date == nullptr || !(date->serial >= first && date->serial < last + 1)) return std::nullopt;
    return static_cast<std::int32_t>(date->serial);
}

}  // namespace

std::optional<DayRange> DaysOf(const Value& begin, const Value& end) {
    const auto first = DayOf(begin);
    const auto last = DayOf(end);
    if (!first || !last || *last < *first) return std::nullopt;
    return DayRange{*first, *last};
}

bool IsWholeIn(const DayRange& document, const DayRange& period) {
    return document.begin >= period.begin && document.end <= period.end;
}

bool Overlap(const DayRange& document, const DayRange& period) {
    return document.begin <= period.end && document.end >= period.begin;
}

bool IsChosen(const SummaryChoice& choice, const SummaryDocument& document) {
    if (!choice.code.empty() && choice.code != document.code) return false;
    if (!choice.period) return true;
    const auto days = DaysOf(document.begin, document.end);
    if (!days) return false;
    return IsWholeIn(*days, *choice.period) || (choice.overlapping && Overlap(*days, *choice.period));
}

}  // namespace tav
