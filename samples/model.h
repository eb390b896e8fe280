// What both kinds of documents are made of: days, quarters, the taxes of a document with several parts.
#pragma once

#include "samples/generator.h"

namespace tav::samples {

inline constexpr const char16_t* kPaymentKinds[] = {u"налог", u"пеня", u"штраф"};

// Days since 30.12.1899; std::invalid_argument when there is no such day.
int DayNumber(const CivilDate& date);
CivilDate DayOf(int day_number);
// std::invalid_argument when the period ends before it begins.
void CheckPeriod(const Period& period);
void CheckCount(int count, const char* what);

// The tax itself for part 0, then the ones after it in Taxes(), around the end of the list.
const Tax& TaxOfPart(const Tax& first, int part);

}  // namespace tav::samples
