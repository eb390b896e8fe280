// From the plan of a table to its definition: numbers, places in the row, flags, maps.
#pragma once

#include "jet/schema/system_tables.h"
#include "jet/schema/table_plan.h"

namespace tav::jet {

// The definition of a user table; pages, roots and map pointers are still open.
TableDefinition PlanUserTable(const TablePlan& plan);
// The same of a system table, whose columns are listed by name and whose indexes have flags of their own.
TableDefinition PlanSystemTable(const SystemTablePlan& plan);

}  // namespace tav::jet
