// Checks the data pages of a table: slots, moved rows, rows, values.
#pragma once

#include <functional>

#include "jet/check/check_definition.h"
#include "jet/check/check_slot_set.h"
#include "jet/table/row.h"

namespace tav::jet::check {

// What is known of a table's rows once its data pages have been walked.
struct CheckedRows {
    SlotSet live;   // ids of all rows
    SlotSet sound;  // ids of those that can be decoded
};

// Claims the pages of the table's data and long values. `visit` gets every row that can be decoded.
CheckedRows CheckRows(CheckContext& context, const CheckedTable& table,
                      const std::function<void(const Row&)>& visit);

// The row of an id in CheckedRows::sound. Valid until the next Trim.
Row SoundRow(CheckContext& context, const CheckedTable& table, RowId id);

}  // namespace tav::jet::check
