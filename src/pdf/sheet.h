// A report as rows of cells, before it is a file of any kind, and the picture that stands before them on
// paper.
#pragma once

#include <cstdint>
#include <vector>

#include "common/date.h"
#include "common/text.h"

namespace tav {

enum class CellAlignment { Left, Centre, Right };

// Rules are the thin ones of the table, unless the cell has a thicker one. Texts are plain; amounts are those
// that stand right, and no line breaks in them.
struct SheetCell {
    Text text;
    int columns = 1;  // how many it spans
    int rows = 1;
    int left_rule = 0;  // in pixels of 1/96 inch; 0: the table's own
    int top_rule = 0;
    CellAlignment alignment = CellAlignment::Left;
    bool bold = false;
};

inline constexpr int kNoSheet = -1;

struct SheetRow {
    std::vector<SheetCell> cells;
    int link = kNoSheet;  // the sheet that the first cell leads to, by its number in the document
};

// What a taxpayer owed or had over on each day of a period, and what was charged and paid in each month.
// Amounts are in roubles; a debt is negative.
struct BalancePicture {
    struct Day {
        double day = 0;      // as in Date
        double balance = 0;  // at its end
    };
    struct Month {
        int year = 0;
        int month = 0;
        double charged = 0;
        double paid = 0;
    };
    double begin = 0;
    double end = 0;
    double opening = 0;
    std::vector<Day> days;      // ascending
    std::vector<Month> months;  // ascending, without gaps
};

// Balances side by side, a debt negative.
struct AmountsPicture {
    struct Bar {
        Text name;
        double amount = 0;
    };
    std::vector<Bar> bars;
};

struct Sheet {
    Text title;
    std::vector<SheetRow> heading;   // without rules, a label and its value by turns
    std::vector<SheetRow> headings;  // of the columns, on every page
    std::vector<SheetRow> rows;
    BalancePicture balance;   // drawn when its period is not empty
    AmountsPicture amounts;   // drawn when there are any
    bool leads_home = false;  // its pages lead back to the document's first sheet
};

}  // namespace tav
