// Checks memo and OLE values: the head in the row, and the records it leads to.
#pragma once

#include <map>

#include "jet/check/check_definition.h"
#include "jet/check/check_slot_set.h"

namespace tav::jet::check {

class LongValueCheck {
 public:
    // Claims the pages of the table's long values and checks their slots.
    LongValueCheck(CheckContext& context, const CheckedTable& table);

    // Why the value is broken, or empty. A record belongs to one value only.
    Text Check(const Column& column, Bytes value);

 private:
    Text CheckRecords(SlotSet& records, Pointer first, std::size_t length, bool chain, Bytes& data);

    CheckContext& context_;
    std::map<std::uint16_t, SlotSet> records_;  // in use, by column number
};

}  // namespace tav::jet::check
