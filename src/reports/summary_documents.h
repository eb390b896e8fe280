// What the last summary summed up: its kind and its documents, in the order of its rows.
//
// Module-level state, kept until the next summary begins: the dialog that narrows a summary to a period and a
// code works on these documents.
#pragma once

#include <vector>

#include "common/text.h"
#include "common/value.h"

namespace tav {

enum class SummaryKind { Statements, Acts };

struct SummaryDocument {
    Value begin;  // Date or Null
    Value end;
    Text code;  // budget classification code
    Text file;  // full path of the statement page that was written; empty for an act
};

struct Summary {
    SummaryKind kind = SummaryKind::Statements;
    bool failed = false;  // and the failure has been shown
    std::vector<SummaryDocument> documents;
};

const Summary& LastSummary();

// A summary begins. It counts as failed until its documents are recorded.
void BeginSummary(SummaryKind kind);
void RecordDocuments(std::vector<SummaryDocument> documents);

// For the caller of a summary that returned no path: says that there is nothing to sum up, unless the reason
// was a failure.
void ShowNothingToSumUp();

}  // namespace tav
