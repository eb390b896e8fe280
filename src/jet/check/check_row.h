// Checks the bytes of one row against its table's definition.
#pragma once

#include "jet/check/check_definition.h"
#include "jet/check/check_long_values.h"

namespace tav::jet::check {

// Findings name `place`. False when the row cannot be decoded.
bool CheckRow(CheckContext& context, const CheckedTable& table, LongValueCheck& long_values, Bytes row,
              const Text& place);

}  // namespace tav::jet::check
