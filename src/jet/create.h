// An empty database from nothing.
#pragma once

#include <span>
#include <vector>

#include "common/text.h"
#include "jet/table_definition.h"

namespace tav::jet {

struct ColumnPlan {
    TextView name;
    ColumnType type = ColumnType::Long;
    std::uint16_t characters = 0;  // of a text column
};

struct IndexPlan {
    TextView name;
    std::vector<TextView> columns;
    bool primary = false;
};

struct TablePlan {
    TextView name;
    std::vector<ColumnPlan> columns;
    std::vector<IndexPlan> indexes;
};

// The file's bytes: the system tables and one definition, map page and empty index roots per table.
std::string EmptyDatabase(std::span<const TablePlan> tables);

}  // namespace tav::jet
