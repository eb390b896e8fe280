// Fields of a recordset's current row, as the reports need them.
#pragma once

#include <cstdint>

#include "common/text.h"
#include "db/connection.h"

namespace tav {

// The field's text as HTML shows it; empty for Null.
Text FieldText(const Recordset& row, TextView field);

// A whole number, such as a key; anything else is "Type mismatch".
std::int64_t WholeNumber(const Recordset& row, TextView field);

}  // namespace tav
