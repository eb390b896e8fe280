// The amounts of one act as its summary shows them.
#pragma once

#include <array>

#include "common/text.h"
#include "common/value.h"
#include "db/connection.h"

namespace tav {

// In the order of the summary's columns: opening debt and overpayment, the nine movements of the period,
// closing debt and overpayment.
inline constexpr std::size_t kActAmounts = 13;
using ActAmounts = std::array<Money, kActAmounts>;

// Sums the fields of a row of tav_acts, exactly; Null counts as 0. An amount beyond the currency type is
// "Overflow".
ActAmounts ReadActAmounts(const Recordset& act);

// "1 234,50&nbsp;", "(1 234,50)&nbsp;" for a negative amount, "-&nbsp;" for 0.
Text ActAmountText(Money amount);

// One cell each for the opening and the closing balance: the larger of debt and overpayment. A debt has a
// sign, and an opening balance without either none, but a closing one has ("- -&nbsp;").
Text OpeningText(const ActAmounts& amounts);
Text ClosingText(const ActAmounts& amounts);
// The closing balance in roubles, a debt negative.
double ClosingBalance(const ActAmounts& amounts);

}  // namespace tav
