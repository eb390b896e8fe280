// What the two summaries share: the consolidated variant, and the heading.
//
// A taxpayer with several subdivisions under one INN is summed up by budget classification code: where a KPP
// is expected stands a code then, which is longer than any KPP; twenty zeros stand for the first code that
// the taxpayer has.
#pragma once

#include <optional>

#include "common/text.h"
#include "db/connection.h"
#include "reports/report_page.h"
#include "reports/summary_documents.h"
#include "reports/taxpayer_shown.h"

namespace tav {

bool IsConsolidated(TextView kpp);

// Reads the codes that a consolidated summary can be of (`codes` is a select whose first column is the code)
// and notes them and its own one in `summary`: its KPP itself, or, for the twenty zeros, the one of the choice,
// which has none then, else the first of them; empty when there is none.
void ChooseCode(Connection& connection, const SqlText& codes, Summary& summary, SummaryChoice& choice);

struct CodeAndTax {
    Text code;
    Text tax;
};

// The heading: the title (HTML), then name, INN and KPP, which are the chosen taxpayer's where one is chosen,
// else the documents' own; in the consolidated variant the code and its tax follow.
void AddSummaryHeading(ReportPage& page, TextView title, const ShownTaxpayer& of_documents,
                       const std::optional<CodeAndTax>& consolidated);

}  // namespace tav
