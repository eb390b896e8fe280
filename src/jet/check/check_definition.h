// Checks one table's definition, and reads it on the way.
#pragma once

#include <optional>

#include "jet/check/check_context.h"
#include "jet/schema/table_definition.h"

namespace tav::jet::check {

struct CheckedTable {
    TableDefinition definition;
    Text place;  // "table T"
    std::uint32_t rows = 0;
    std::int32_t autonumber = 0;
    std::vector<std::uint32_t> distinct_keys;  // of each real index
};

// Claims the pages of the definition. No value when so much of it is broken that its rows cannot be found.
std::optional<CheckedTable> CheckDefinition(CheckContext& context, PageNumber page, TextView name);

}  // namespace tav::jet::check
