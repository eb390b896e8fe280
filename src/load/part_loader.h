// Brings one part of the catalogue into the database: a statement or an act, as its body and a header row.
//
// A part takes the next number, whether it is stored or not. A document whose every amount is "0.00" is not
// stored unless the settings say so; of a statement, the lines before the first amount that counts are not.
// Statements of one series (INN, KPP, h6, h7, h10, year) share a series number `vid`, which only the current
// one carries. What fails is thrown; the statements executed before stay.
#pragma once

#include <cstdint>

#include "common/text.h"
#include "db/connection.h"
#include "load/account.h"
#include "load/column_values.h"
#include "load/counter.h"
#include "xml/document.h"

namespace tav {

// The loader's switches; 0 is off.
struct LoadSwitches {
    std::int16_t zero_statements = 0;   // SpVupis: statements whose amounts are all zero are stored too
    std::int16_t zero_acts = 0;         // SpAct: the same for acts
    std::int16_t dated_lines_only = 0;  // SpVupisOb: only dated lines decide whether a statement is all zero
    std::int16_t section_2_only = 0;    // SpActOb: only section 2 decides whether an act is all zero
};
LoadSwitches ReadLoadSwitches();

class PartLoader {
 public:
    // Numbers go on from the highest ones, as the database returned them. What is stored is counted in `account`.
    PartLoader(Connection& connection, const LoadSwitches& switches, const Value& highest_part,
               const Value& highest_series, ImportAccount& account);

    // Whether the document was stored; if not, every amount that counts is 0.00.
    bool LoadAct(Node part, TextView file_name);
    bool LoadStatement(Node part, TextView file_name);

 private:
    bool LoadRow(Node row, bool nonzero);
    void LoadStatementHeader(Node head, TextView file_name, bool stored);
    SqlText VersionLiteral(const SqlText& current, TextView period_end);

    Connection& connection_;
    LoadSwitches switches_;
    ImportAccount& account_;
    Counter part_;
    Counter series_;
    ColumnValues head_{CatalogueTable::Header};
    ColumnValues row_{CatalogueTable::Operations};
    ColumnValues amounts_{CatalogueTable::Acts};
};

}  // namespace tav
