// The amounts of the statement reports: their text, and the running totals of a statement table.
//
// Module-level state: the turnovers, opening and closing values of the table's columns 1 to 9 (1 charged tax,
// 2 penalty interest, 3 fine, 4 total; 5 to 8 the same paid; 9 the balance, arrears negative), and whether
// the totals have been asked for. The first field read after the totals begins the next report: all is 0
// again. A report that fails before its totals leaves its sums to the next one.
#pragma once

#include "common/text.h"
#include "db/connection.h"

namespace tav {

enum MoneyMode { kTurnover = 0, kOpening = 1, kClosing = 2 };

// The text of an amount: "1 234,50", "- 1 234,50"; "-&nbsp;" where there is none.
//
// With a field name ("m1" to "m9"): the value of the row the recordset stands on; Null gives "-&nbsp;", 0
// gives "0,00". A name of two characters adds it to its column's turnover in mode 0 and makes it the opening
// value in any other mode; a column outside 1 to 9 is "Subscript out of range".
//
// With a column number ("1" to "9"): the column's total of the mode; 0 gives "-&nbsp;". The recordset is not
// looked at and may be absent.
Text GetMoney(const Recordset* row, TextView key, int mode);

// What GetMoney of "9" in mode 2 is the text of.
double ClosingBalance();

}  // namespace tav
