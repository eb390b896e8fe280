// A table as it is to be made: its columns and indexes by name, in the order that they are stored in.
#pragma once

#include <vector>

#include "common/text.h"
#include "jet/schema/table_definition.h"

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

}  // namespace tav::jet
