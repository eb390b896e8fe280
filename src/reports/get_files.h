// The summary of a taxpayer's statements, "index.doc", with a page of its own for every statement series.
#pragma once

#include "common/text.h"
#include "reports/summary_choice.h"

namespace tav {

// One row per series (tax, OKATO, the series' number): balances and turnovers, and a link to the series' full
// page, which is written into the same folder. Series that are not chosen have neither row nor page. A KPP of
// more than 15 characters asks for the consolidated variant (reports/summary_heading.h).
//
// Returns the full path of the summary; empty when the taxpayer has no statement, or none that is chosen, and
// nothing is written then, or after a failure, which is shown. LastSummary() (reports/summary_documents.h)
// tells which, and what was summed up.
Text GetFiles(TextView database, TextView inn, TextView kpp, TextView export_folder,
              const SummaryChoice& choice = {});

// The same for LastSummary() alone: nothing is written.
void ListStatements(TextView database, TextView inn, TextView kpp, TextView code = {});

}  // namespace tav
