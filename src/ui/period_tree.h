// The tree of periods from which a person chooses what a summary covers.
//
// The root is all periods; below it are the years of the documents, and in a year: the first half-year, the
// first nine months, the second half-year; in a half-year its quarters, in a quarter its months. A period
// that no document has to do with is left out. Each node says how many documents lie wholly in its period and
// how many overlap it ("2011 (1/2)", see is_date_in.h).
//
// A document without a begin date or an end date, or that ends before it begins,
// is in the root alone. One that covers many years (a date mistyped) makes nodes
// for its first and its last year only, and counts in the years of the others.
#pragma once

#include <optional>
#include <vector>

#include "common/text.h"
#include "reports/summary_documents.h"

namespace tav {

enum class PeriodKind { All, Year, HalfYear, NineMonths, Quarter, Month };

// The key of the picture beside a node: "all", "y", "p" (half-years and nine months), "q", "m".
TextView PictureKey(PeriodKind kind);

struct PeriodNode {
    Text key;     // "all", "k1", "k2", ...
    Text parent;  // its key; empty for the root
    Text text;
    PeriodKind kind = PeriodKind::All;
    std::optional<DayRange> period;  // no value: all periods
    long long whole = 0;             // documents wholly in it
};

// The nodes as a tree control takes them, parents before their children. Only documents of that code count;
// all of them for empty text.
std::vector<PeriodNode> PeriodTree(const Summary& summary, TextView code);

// The key in the tree `now` of the period that `key` has in
// the tree `before`, or of its nearest parent that is in both.
Text SamePeriod(const std::vector<PeriodNode>& before, TextView key, const std::vector<PeriodNode>& now);

}  // namespace tav
