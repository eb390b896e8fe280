// Why a table may be read but not changed.
#pragma once

#include "jet/schema/table_definition.h"

namespace tav::jet {

// The reason for which rows of this table cannot be changed safely (a relationship, a text index in an
// unknown sort order, a validation rule, ...) with the names of table and column, or empty.
Text WhyReadOnly(const TableDefinition& table);

}  // namespace tav::jet
