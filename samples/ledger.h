// What a statement says: its table, line by line, and the sums the lines add up to.
#pragma once

#include <vector>

#include "samples/generator.h"
#include "samples/random.h"

namespace tav::samples {

// A cell of the printed table: column 1 to 14 and its text (form.h tells the two characters that
// are printed otherwise than they are read). The cells of a line are in the order of the columns; a
// cell that a line does not have is not printed at all, and a second line of column 4 comes last.
struct Cell {
    int column = 0;
    Text text;
};
using Line = std::vector<Cell>;

// The balance of every kind of payment at the beginning of the period, at every new year
// in it and at its end, and between them the operations, evenly spread over the period.
class Ledger {
 public:
    // The options must live as long as the ledger.
    explicit Ledger(const StatementOptions& options);

    // To be called once.
    std::vector<Line> Lines();
    // What Lines() added up.
    const Sums& sums() const { return sums_; }

 private:
    long long Total() const;
    void AddBalances(std::vector<Line>& lines, const CivilDate& date) const;
    long long OperationAmount(bool charge, bool tax, long long balance);
    Line Operation(int number, int day);

    const StatementOptions& options_;
    Random random_;
    Sums sums_;
    Money balance_{};
};

}  // namespace tav::samples
