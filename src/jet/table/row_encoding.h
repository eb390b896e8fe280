// A row's values as the bytes of row.h.
#pragma once

#include <span>
#include <string>

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

inline constexpr TextView kFieldTooSmall =
    u"The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less data.";

// The bytes of a row with these values (in the order of definition.columns), put into `out`. What a column
// cannot hold is a Failure with the database engine's usual words: texts that are too long, numbers out of
// range, kinds that were not converted, records that are too long.
void EncodeRow(const TableDefinition& definition, std::span<const Value> values, std::string& out);

}  // namespace tav::jet
