// Index keys: the bytes by which an index orders its rows.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "common/value.h"
#include "jet/table_definition.h"

namespace tav::jet {

// Whether keys of this index can be made: every column's type and sort order has known codes. The reason, or
// empty.
Text WhyNoKeys(const TableDefinition& table, const RealIndex& index);

// The key of a row (values in the order of table.columns). A value whose code is not known (a character the
// sort order's table lacks) is a Failure that names column and value; nothing has been changed then.
std::string EncodeKey(const TableDefinition& table, const RealIndex& index, std::span<const Value> row);

// The key of one column's value, to be put together by a search over the leading columns of an index. No
// value when the searched value has no code, so that the index cannot answer.
std::optional<std::string> EncodeKeyColumn(const Column& column, bool ascending, const Value& value);

// Whether every index column is Null in the row; such a row has no entry in an index that ignores Nulls.
bool AllNull(const RealIndex& index, std::span<const Value> row);

}  // namespace tav::jet
