// What the database holds: its documents, one per header row, and the counts that are shown of them.
#pragma once

#include <vector>

#include "common/text.h"
#include "common/value.h"
#include "sql/recordset.h"

namespace tav {

struct HeldDocument {
    std::int64_t id = 0;
    Text file_name;
    Text inn;
    Text kpp;
    Text name;
    Text code;  // budget classification code
    Text tax;
    Text okato;
    Value begin;  // Date or Null
    Value end;
    bool act = false;      // else a statement
    bool current = false;  // a statement that no other one has superseded

    // A statement that is known only as long as its file lies in the folder.
    bool Superseded() const { return !act && !current; }
};

// The current row of a select over headers that has the columns filename, vid, perb, pere, h2, h3, h6, h7, h8
// and h10; number and INN are left to the caller.
HeldDocument HeldDocumentOf(const Recordset& row);

// Ordered by code, OKATO and begin. An empty INN means every taxpayer; several INNs stand between "|". To
// several INNs any KPP belongs; an empty KPP, or one of 16 characters and more, means every subdivision.
// Failures are thrown.
std::vector<HeldDocument> HeldDocuments(TextView database, TextView inn, TextView kpp);

// Superseded statements do not count.
struct HoldingCounts {
    int statements = 0;
    int acts = 0;
    // Documents whose period shares no day with another document of the same kind, taxpayer, code and OKATO.
    int alone = 0;
};
HoldingCounts CountHoldings(const std::vector<HeldDocument>& documents);

}  // namespace tav
