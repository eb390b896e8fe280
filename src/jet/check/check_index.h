// Checks the indexes of a table: the pages of each tree, their entries, and the rows they stand for.
#pragma once

#include "jet/check/check_rows.h"

namespace tav::jet::check {

// Claims the pages of all indexes of the table.
void CheckIndexes(CheckContext& context, const CheckedTable& table, const CheckedRows& rows);

}  // namespace tav::jet::check
