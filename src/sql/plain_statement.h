// Changing statements that say nothing but literals, which need no SQLite to be carried out:
//
//     insert into t (a, b) values (1, Null)
//     update t set a=1, b='x' where c='y' and d='z'      c and d are text columns that are not set
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "common/value.h"
#include "jet/table/table.h"
#include "sql/sql_scope.h"

namespace tav::jet {

struct PlainValue {
    std::size_t column = 0;                // position in the table's columns
    std::optional<std::size_t> parameter;  // the literal's number among those of the statement; none of Null
};

struct PlainStatement {
    std::vector<PlainValue> stored;
    std::vector<PlainValue> conditions;  // texts that an update's columns equal
};

// No value for any other statement.
std::optional<PlainStatement> ReadPlain(const Statement& statement);

// Whether a select gives the same rows when it passes over those of a table that are like another one in all the columns
// that it names.
bool IgnoresRepeats(const Statement& statement);

// The values of one update, in the order of the statement.
struct PlainUpdate {
    std::vector<Value> stored;  // as the columns store them
    std::vector<Text> conditions;
};

// Carries out updates that differ in their values only, as if one after the other, in one walk through the table.
void UpdateRows(Table& table, const PlainStatement& statement, std::span<const PlainUpdate> updates);

}  // namespace tav::jet
