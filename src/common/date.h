// A point in time as the database keeps it: days since 30.12.1899 00:00, the fraction being the time of day.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>

namespace tav {

struct Date {
    double serial = 0;

    auto operator<=>(const Date&) const = default;
    bool operator==(const Date&) const = default;
};

struct CivilDate {
    int year = 0;
    int month = 0;
    int day = 0;

    bool operator==(const CivilDate&) const = default;
};

struct ClockTime {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// No value when there is no such day, or the year is outside 100 to 9999.
std::optional<Date> DateFromCivil(const CivilDate& civil);
CivilDate CivilFromDate(Date date);
// The time of day of the date, rounded to whole seconds.
ClockTime TimeFromDate(Date date);

}  // namespace tav
