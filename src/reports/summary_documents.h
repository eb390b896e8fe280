// What the last summary summed up: its kind, whose, and its documents, in the order of its rows.
//
// Module-level state, kept until the next summary succeeds: the dialog that narrows a summary to a period and
// a code works on these documents. They are all of the taxpayer's, whatever part of them was chosen to be
// written, so that the dialog can narrow them again.
#pragma once

#include <functional>
#include <vector>

#include "common/text.h"
#include "db/connection.h"
#include "reports/closing_bars.h"
#include "reports/paper.h"
#include "reports/summary_choice.h"

namespace tav {

enum class SummaryKind { Statements, Acts };

struct Summary {
    SummaryKind kind = SummaryKind::Statements;
    // The last attempt failed or was cancelled, and that has been said; all else here is that of the summary
    // before.
    bool failed = false;
    Text inn;
    Text kpp;   // as asked for: a KPP, or what stands for one (reports/summary_heading.h)
    Text code;  // the one that a consolidated summary is of; empty for an ordinary one
    // All codes that a consolidated summary can be of; those of the documents of an ordinary one. Sorted.
    std::vector<Text> codes;
    std::vector<SummaryDocument> documents;
    Text path;  // of the summary written; empty when none was
};

const Summary& LastSummary();

// What a summary is asked for.
struct SummaryRequest {
    Text database;
    Text inn;
    Text kpp;
    Text export_folder;
    SummaryChoice choice;
};

// Makes one summary: opens the database for reading, lets `build` make the page of the chosen documents, name
// all documents in `summary` and, for a consolidated one, its codes; writes the page to `name` in the export
// folder and returns its path. A page of empty text means that there are no rows: nothing is written and the
// path is empty. What fails is shown under `title` (page.h). A `build` that writes files of its own sets
// `file` to each of them first; when it is cancelled, it throws how far it has come. It owns what else it uses
// (common/aside.h).
struct SummaryCopy {
    PaperCopy& paper;
    Sheet* sheet;  // of the summary itself, added to the paper last; null when no copy is wanted
    ClosingBars bars = {};
};
using BuildSummary = std::function<Text(Connection& connection, const SummaryRequest& request,
                                        Summary& summary, Text& file, SummaryCopy& copy)>;
struct CancelledSummary {
    int done = 0;  // pages
    int of = 0;
};
struct SummaryPlan {
    SummaryKind kind;
    TextView title;
    TextView name;
};
Text WriteSummary(const SummaryPlan& plan, const SummaryRequest& request, const BuildSummary& build);

// For the caller of a summary that returned no path: says that there is nothing to sum up, or nothing in the
// chosen period and code, unless the reason was a failure or a cancel.
void ShowNothingToSumUp();

}  // namespace tav
