// Values on their way into SQLite and back.
//
// SQLite has no date: a date travels as a blob of 8 bytes that sorts as the dates do, so that min, max,
// distinct, order by and subqueries keep it one. Other bytes travel after eight bytes 0xFF, which no date
// has. A boolean is -1 or 0; money is a double.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <optional>

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

using DateBlob = std::array<unsigned char, 8>;
DateBlob EncodeDate(Date date);

Value FromSqlite(sqlite3_value* value);
// A value of a row as SQLite would give it back.
Value AsResult(Value value);
// A text into `out`, whose memory is used again.
void TakeText(sqlite3_value* value, Text& out);
void SetResult(sqlite3_context* context, const Value& value);
// The text of a `value` must live until the statement is bound anew.
void Bind(sqlite3_stmt* statement, int parameter, const Value& value);

// A literal as it is compared with a column: text read as a number or date by the regional form, and so on.
// What cannot be read is DataTypeMismatch with column and value.
Value ForComparison(const Column& column, Value literal);

// The column's own kind for a value that SQLite has, so that its index can be searched; no value when the
// column cannot hold it.
std::optional<Value> ForIndex(const Column& column, const Value& value);

// Equal values (numbers of any kind; texts as the collation compares them) have equal hashes.
std::uint64_t HashValue(const Value& value);

}  // namespace tav::jet
