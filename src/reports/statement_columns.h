// The columns of the statement table, left to right: one row each, from which its heading, its pieces of the
// selects and its cells are made.
#pragma once

#include <array>
#include <span>

#include "common/text.h"
#include "db/connection.h"

namespace tav {

// Items of GetHS (reports/cells.h): a text, then its codes; all empty where there is no cell.
using HeadingItems = std::array<TextView, 4>;

struct StatementColumn {
    HeadingItems upper;     // in the first row of headings; none under a heading that spans several columns
    HeadingItems lower;     // in the second row; none under a heading that goes down to there
    TextView field;         // its name in the selects; "m1" to "m9" are amounts (reports/money.h)
    TextView operation;     // its piece of the select of operations, which follows the one before it
    TextView alignment;     // code after the cell of a text; empty: that of the next cell that has one
    TextView opening;       // its piece of the select of the opening balance; empty: not part of a balance
    TextView by_kind;       // what that piece sums up
    bool turnover = false;  // its operations are added up
    bool rule = false;      // a thicker rule stands to its left

    bool IsAmount() const { return field.starts_with(u'm'); }
    // The key of its totals for GetMoney.
    TextView Number() const { return field.substr(1); }
};
std::span<const StatementColumn> StatementColumns();

// The select of a statement's dated lines, and that of its opening balance on the day `begin` (as the balance
// lines write it): of each kind of obligation a debt in the charged columns, a credit in the paid ones, and
// the balance of all.
SqlText OperationsSelect(std::int64_t id);
SqlText OpeningSelect(TextView begin, std::int64_t id);

}  // namespace tav
