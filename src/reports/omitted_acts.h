// Acts that the summary of acts has no row for.
//
// Its select groups the headers of statements and acts alike and leaves a group out that has a statement in
// it. So an act has no row when a statement of the same KPP, code, OKATO and period is in the database. The
// accountant is told which acts these are.
#pragma once

#include <vector>

#include "common/text.h"
#include "reports/summary_documents.h"

namespace tav {

// One line for each such group of the summary's taxpayer (and code) that is chosen.
std::vector<Text> OmittedActs(Connection& connection, const Summary& summary, const SummaryChoice& choice);

// One message that names them; none when there are none.
void ShowOmittedActs(const std::vector<Text>& lines);

}  // namespace tav
