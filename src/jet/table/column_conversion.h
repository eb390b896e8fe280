// Values of statements become values of columns.
#pragma once

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

// A value as the column stores it: text into a number or a date by the regional form, numbers into text,
// integers checked for range ("Overflow"), text for length. What does not convert is DataTypeMismatch with
// column and value. Null stays Null.
Value ConvertForColumn(const Column& column, const Value& value);

}  // namespace tav::jet
