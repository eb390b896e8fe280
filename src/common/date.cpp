#include "common/date.h"

#include <chrono>
#include <cmath>

namespace tav {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero{
    year_month_day{std::chrono::year{1899}, std::chrono::month{12}, std::chrono::day{30}}};

// The day of a moment is its integer part and the time of day the fraction without its sign, so 23:59:59.9 of
// a day before the day zero does not run backwards.
std::pair<std::int64_t, std::int64_t> DayAndSecond(Date date) {
    double day = std::trunc(date.serial);
    std::int64_t second = std::llround(std::fabs(date.serial - day) * 86400);
    if (second == 86400) {
        day += 1;
        second = 0;
    }
    return {static_cast<std::int64_t>(day), second};
}

}  // namespace

std::optional<Date> DateFromCivil(const CivilDate& civil) {
    if (civil.year < 100 || civil.year > 9999 || civil.month < 1 || civil.day < 1) return std::nullopt;
    const year_month_day date{std::chrono::year{civil.year},
                              std::chrono::month{static_cast<unsigned>(civil.month)},
                              std::chrono::day{static_cast<unsigned>(civil.day)}};
    if (!date.ok()) return std::nullopt;
    return Date{static_cast<double>((sys_days{date} - kDayZero).count())};
}

CivilDate CivilFromDate(Date date) {
    const year_month_day civil{kDayZero + days{DayAndSecond(date).first}};
    return {static_cast<int>(civil.year()), static_cast<int>(static_cast<unsigned>(civil.month())),
            static_cast<int>(static_cast<unsigned>(civil.day()))};
}

ClockTime TimeFromDate(Date date) {
    const auto second = static_cast<int>(DayAndSecond(date).second);
    return {second / 3600, second / 60 % 60, second % 60};
}

}  // namespace tav
