// The regional forms of numbers and dates. Numbers are written as in the user's region (regional_form.h), a
// decimal comma in the examples here; dates are dd.mm.yyyy everywhere, as the documents have them.
//
// Number text: an optional sign, digits with group spaces (U+0020, U+00A0) or the
// region's group separator between them, at most one decimal separator; nothing else.
#pragma once

#include <optional>

#include "common/date.h"
#include "common/text.h"
#include "common/value.h"

namespace tav {

// No value when the text is not a number in this form ("123,45", "-1 234,5"; not "123.45", not empty text).
std::optional<double> ParseNumber(TextView text);
// The same to the ten-thousandth, half to even beyond; no value also when the amount does not fit 64 bits.
std::optional<Money> ParseMoney(TextView text);
// A whole number ("5", "05"); fractions and exponents are not.
std::optional<std::int64_t> ParseInteger(TextView text);
// "01.02.2011", also "1.2.2011"; a year of two digits is 1930 to 2029.
std::optional<Date> ParseDate(TextView text);

// "01.02.2011"; with a time of day "01.02.2011 12:30:00".
Text FormatDate(Date date);
// The shortest decimal text that reads back as the number: "123,45", "-0,5", "7".
Text FormatNumber(double number);
// Two decimals, leading zero, groups of three with U+00A0 between them: "1 234,50", "-0,30".
Text FormatAmount(double amount);
// The same, exactly; halves of the last decimal go away from zero.
Text FormatAmount(Money amount);

// The text a value converts to: Null gives empty text, -1 and 0 stand for a boolean.
Text ValueText(const Value& value);

}  // namespace tav
