// Which of a summary's documents are written: those of a period and of a budget classification code.
//
// Days are whole day numbers, counted as the database counts its dates (common/date.h).
#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "common/text.h"
#include "common/value.h"

namespace tav {

// From the first day to the last, both included.
struct DayRange {
    std::int32_t begin = 0;
    std::int32_t end = 0;

    bool operator==(const DayRange&) const = default;
};

// The days between two dates of the database. No value when one is Null or outside the years 100 to 9999, or
// when the end comes before the begin: by the rules below such a document would be inside of periods that it
// shares no day with.
std::optional<DayRange> DaysOf(const Value& begin, const Value& end);

bool IsWholeIn(const DayRange& document, const DayRange& period);
// Whether they share a day.
bool Overlap(const DayRange& document, const DayRange& period);

// A row of a summary.
struct SummaryDocument {
    Value begin;  // Date or Null
    Value end;
    Text code;  // budget classification code
    Text file;  // full path of the statement page, where one was written; empty for an act
};

// As it stands, everything is chosen.
struct SummaryChoice {
    std::optional<DayRange> period;  // no value: all periods
    bool overlapping = false;        // false: documents wholly inside the period; true: overlapping ones too
    Text code;                       // empty: all codes; the twenty zeros' own, whatever its length
};

// A document without days (DaysOf) belongs to no period, only to all of them.
bool IsChosen(const SummaryChoice& choice, const SummaryDocument& document);

// A period that no document lies in: a summary of nothing, which only takes stock of the documents.
inline constexpr DayRange kNever = {std::numeric_limits<std::int32_t>::max(),
                                    std::numeric_limits<std::int32_t>::min()};

}  // namespace tav
