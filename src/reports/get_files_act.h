// The summary of a taxpayer's acts of joint reconciliation, "acts.doc".
#pragma once

#include "common/text.h"
#include "reports/summary_choice.h"

namespace tav {

// One row per act: balances and the movements of the period under review. A KPP of more than 15 characters
// asks for the consolidated variant (reports/summary_heading.h).
//
// Returns the full path of the summary; empty when the taxpayer has no act, or none that is chosen, and
// nothing is written then, or after a failure, which is shown. LastSummary() (reports/summary_documents.h)
// tells which, and what was summed up.
//
// Chosen acts that the summary has no row for are named in a message (reports/omitted_acts.h).
Text GetFilesAct(TextView database, TextView inn, TextView kpp, TextView export_folder,
                 const SummaryChoice& choice = {});

// The same for LastSummary() alone: nothing is written, and no message about omitted acts is shown.
void ListActs(TextView database, TextView inn, TextView kpp, TextView code = {});

}  // namespace tav
