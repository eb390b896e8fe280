// The record of a new row, for the system tables of a new database.
#pragma once

#include <span>
#include <string>

#include "common/value.h"
#include "jet/table_definition.h"

namespace tav::jet {

// Values in the order of the columns; texts are stored plain. Memo and OLE columns are Null.
std::string RowBytes(const TableDefinition& table, std::span<const Value> values);

}  // namespace tav::jet
