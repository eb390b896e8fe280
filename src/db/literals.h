// Values as SQL literals, number text in the regional form, and comparing or shifting dates.
//
// Texts read from the database are turned into plain values by isn and isns; sns and snsi make literals of
// texts. None of them doubles an apostrophe inside a value.
//
// Module-level state that lives as long as the component is loaded: the decimal separator that ToLocalNumber
// found, and the range of dates that datebetween recorded last, in whatever procedure that was.
//
// A failure inside isn, isns, sns, snsi or datebetween is shown under the function's name, and the result is
// 0, empty text or false; where memory ran out, it goes on to the caller.
#pragma once

#include <optional>

#include "common/text.h"
#include "common/value.h"

namespace tav {

// 0 for Null, every other value unchanged.
Value isn(const Value& value);

// A whole number, of whatever kind its column is ("id" may be a Double in a host's table); none for anything
// else.
std::optional<std::int64_t> WholeNumberOf(const Value& value);

// The value as text, empty for Null.
Text isns(const Value& value);

// "Null" for empty text, otherwise the text between apostrophes.
Text sns(TextView text);

// "Null" for empty text and for a lone "-", otherwise the text unchanged: numbers without apostrophes.
Text snsi(TextView text);

// Number text with the decimal point as the regional settings want it and without non-breaking spaces
// (U+00A0). Never shows a message.
Text ToLocalNumber(TextView text);

// `date` is a date text (dd.mm.yyyy), possibly rewritten; empty text is between nothing. By `mode`:
//   a date text  records the range `date` to `mode`; true when `mode` is strictly later
//   "-1"         `date` becomes the day before; false
//   ""           true when the recorded range holds `date`, its ends included
//   "-", "+"     the same, and a `date` inside becomes the day before the range, or the day after it
bool datebetween(Text& date, TextView mode);

}  // namespace tav
