// Brings one part of the catalogue into the database: a statement or an act, as its body and a header row.
//
// A part takes the next number, whether it is stored or not. A document whose every amount is "0.00" is not
// stored unless the settings say so; of a statement, the lines before the first amount that counts are not.
// Where dated lines alone count, an undated line before the first of them is stored all the same when it has
// an amount. Statements of one series (INN, KPP, h6, h7, h10, year) share a series number `vid`, which only
// the current one carries. A text that is longer than its column is cut. What fails is thrown; the statements
// executed before stay.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "common/text.h"
#include "convert/balance_fault.h"
#include "convert/catalogue_elements.h"
#include "db/connection.h"
#include "load/account.h"
#include "load/column_values.h"
#include "load/counter.h"

namespace tav {

// The loader's switches; 0 is off.
struct LoadSwitches {
    std::int16_t zero_statements = 0;   // SpVupis: statements whose amounts are all zero are stored too
    std::int16_t zero_acts = 0;         // SpAct: the same for acts
    std::int16_t dated_lines_only = 0;  // SpVupisOb: only dated lines decide whether a statement is all zero
    std::int16_t section_2_only = 0;    // SpActOb: only section 2 decides whether an act is all zero
};
LoadSwitches ReadLoadSwitches();

struct PartOutcome {
    bool stored = false;  // if not, every amount that counts is 0.00
    int rows = 0;         // lines of a statement stored
    std::vector<Remark> remarks;
    std::optional<int> balance_fault;  // of a statement (convert/balance_fault.h)
};

class PartLoader {
 public:
    // Takes the inserts that a part would come to, in their order, without the number of a series. A loader
    // that has one executes nothing.
    using Rehearsal = std::function<void(const SqlText& insert)>;
    // What numbers are given out from.
    struct Numbers {
        Counter part;
        Counter series;
    };

    // `highest`: the highest numbers there are.
    PartLoader(Connection& connection, const Numbers& highest, Rehearsal rehearsal = {});

    PartOutcome LoadAct(const CatalogueElement& part, TextView file_name);
    PartOutcome LoadStatement(const CatalogueElement& part, TextView file_name);

    // For taking back what was loaded since.
    const Numbers& numbers() const { return numbers_; }
    void GoOnFrom(const Numbers& numbers) { numbers_ = numbers; }

 private:
    // What is gathered while one part is read.
    struct Reading {
        bool nonzero = false;       // an amount has counted
        std::vector<SqlText> held;  // lines before that, which have an amount
        RunningBalances balances;
        std::map<Text, std::size_t> long_texts;  // columns whose texts were cut, and the longest one's length
        PartOutcome outcome;
    };

    static void CutToSize(ColumnValues& values, Reading& reading);
    void LoadRow(std::string_view row, Reading& reading);
    void LoadStatementHeader(std::string_view head, TextView file_name, Reading& reading);
    SqlText VersionLiteral(const SqlText& current, TextView period_end);
    void Execute(const SqlText& sql);
    static PartOutcome Finish(Reading& reading);

    Connection& connection_;
    Rehearsal rehearsal_;
    LoadSwitches switches_;
    Numbers numbers_;
    ColumnValues head_;
    ColumnValues row_;
    ColumnValues amounts_;
};

}  // namespace tav
