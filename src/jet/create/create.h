// An empty database from nothing.
#pragma once

#include <span>
#include <string>

#include "jet/schema/table_plan.h"

namespace tav::jet {

// The file's bytes: the system tables and one definition, map page and empty index roots per table.
std::string EmptyDatabase(std::span<const TablePlan> tables);

}  // namespace tav::jet
