// The page of one statement: heading, opening balance, operations, turnovers, closing balance.
#pragma once

#include <optional>

#include "common/text.h"
#include "db/connection.h"
#include "pdf/sheet.h"
#include "reports/taxpayer_shown.h"

namespace tav {

// Builds the page (Page, in page.h) from header rows (`select * from tav_operations_header`), the recordset
// standing on the first: the heading and the opening balance are the first row's, the operations those of
// every row in turn, the period runs from the first row's begin to the last row's end. The recordset stands
// past its end afterwards. Without a row, a Failure with the recordset's own words. The heading names `shown`
// as the taxpayer, else the first row's own INN, KPP and name.
//
// `copy`, if there is one, gets the same page as a sheet.
//
// The calls of GetMoney leave the statement's totals behind, for a summary to show.
Text StatementPage(Connection& connection, Recordset& headers, Sheet* copy,
                   const std::optional<ShownTaxpayer>& shown = std::nullopt);

}  // namespace tav
