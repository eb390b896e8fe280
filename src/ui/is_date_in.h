// Which documents belong to a period.
#pragma once

#include <cstdint>
#include <span>

#include "common/text.h"

namespace tav {

// `begin_dates` and `end_dates` are the documents' whole day numbers, one pair per document. The result is
// "(whole/overlapping)|whole|overlapping": the counts, then the lists of documents by their numbers, which
// begin with 1, each followed by ",". A document wholly inside the period (reports/summary_choice.h) is in
// both lists. For two documents, the first inside: "(1/2)|1,|1,2,". Empty when no document is in the period.
//
// An end that is missing is "Subscript out of range", shown
// under the function's name; the result is empty then.
void IsDateIn(std::int32_t period_begin, std::int32_t period_end, std::span<const std::int32_t> begin_dates,
              std::span<const std::int32_t> end_dates, Text& result);

}  // namespace tav
