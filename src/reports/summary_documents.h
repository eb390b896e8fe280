// What the last summary summed up: its kind and its documents, in the order of its rows.
//
// Module-level state, kept until the next summary begins: the dialog that narrows a summary to a period and a
// code works on these documents.
#pragma once

#include <functional>
#include <vector>

#include "common/text.h"
#include "common/value.h"
#include "db/connection.h"

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

// Makes one summary: opens the database for reading, lets `build` make the page and name its documents,
// writes the page to `name` in the export folder and returns its path. A page of empty text means that there
// are no rows: nothing is written and the path is empty. What fails is shown under `title` (page.h); the
// summary counts as failed then. A `build` that writes files of its own sets `file` to each of them first.
using BuildSummary =
    std::function<Text(Connection& connection, Text& file, std::vector<SummaryDocument>& documents)>;
struct SummaryPlan {
    SummaryKind kind;
    TextView title;
    TextView name;
};
Text WriteSummary(const SummaryPlan& plan, TextView database, TextView export_folder,
                  const BuildSummary& build);

// For the caller of a summary that returned no path: says that there is nothing to sum up, unless the reason
// was a failure.
void ShowNothingToSumUp();

}  // namespace tav
