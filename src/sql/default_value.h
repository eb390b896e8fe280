// What an insert stores in a column that it does not name.
#pragma once

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

// The value of the column's default: a text in quotation marks, a number with a point, #month/day/year#, a
// boolean word, Null, or Now() and Date(), with or without "=" before it. Any other expression is a Failure
// that names table and column.
Value DefaultOf(const TableDefinition& table, const Column& column);

}  // namespace tav::jet
