// The properties of a table and its columns, as the catalogue keeps them (column LvProp of MSysObjects).
//
//     "MR2" 00, then chunks: u32 size of the chunk, u16 kind, content
//     kind 80      the names of the properties: u16 size in bytes, UTF-16
//     kind 0, 1    properties of the table, of a column: u32 size of this part, u16 size and UTF-16 of the
//                  column's name; then values: u16 size of the value, u8 0 or 1, u8 column type, u16 place
//                  of the property's name, u16 size and bytes of the data
//
// Found in files of the database's own program, where these tell what an insert may store: "Required" and
// "AllowZeroLength" (booleans: one byte, not zero), "DefaultValue" and "ValidationRule" (memos: expressions;
// a table may have a rule too). A column that says nothing of empty texts takes them.
#pragma once

#include <string_view>

#include "jet/schema/table_definition.h"

namespace tav::jet {

// Puts them into the definition. What is not in this form has none.
void TakeProperties(std::string_view properties, TableDefinition& table);

}  // namespace tav::jet
