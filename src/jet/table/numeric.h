// Decimal values: a sign byte (0x80 for negative) and a whole number of 128 bits, four u32 with the most
// significant first. The value is that number / 10^scale; the column says the scale and how many digits there
// may be at most.
#pragma once

#include <cstdint>
#include <string>

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

// The nearest double.
double NumericValue(const Column& column, const std::uint8_t* bytes);

// Appends the 17 bytes of a whole number, an amount or a double, rounded half to even to the column's scale. A
// number with too many digits is a Failure with the database engine's words.
void AppendNumeric(std::string& out, const TableDefinition& table, const Column& column, const Value& value);

}  // namespace tav::jet
