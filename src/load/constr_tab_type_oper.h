// The dictionary of operation types: every statement row without a type (`tid` Null) gets one.
//
// A type is a pair of upper-cased operation text and kind of payment. Balance lines have fixed numbers and no
// entry in tav_operations_type; a pair not seen before becomes a new entry, numbered on from the highest
// (16-bit: "Overflow" beyond). Rows whose operation text or kind of payment is Null are passed over.
//
// A failure is shown; the types assigned so far stay.
#pragma once

#include "common/text.h"

namespace tav {

void ConstrTabTypeOper(TextView database);

}  // namespace tav
