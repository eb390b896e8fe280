// Values of the database as the texts that other tools read.
#pragma once

#include <string>

#include "common/value.h"

namespace tav {

// "2010-03-28"; with a time of day "2010-03-28 12:30:00".
std::string IsoDate(Date date);
// Two small digits a byte.
std::string HexDigits(std::string_view bytes);
// The shortest text that reads back as the number, with a decimal point: "0.5", "1e+300".
std::string NumberText(double number);
// Exact, without zeros at its end: "-1234.5".
std::string MoneyText(Money money);
// UTF-8 whatever the characters: halves of pairs that stand alone become U+FFFD.
std::string WholeUtf8(TextView text);

}  // namespace tav
