// A Jet SQL statement in SQLite's words.
//
//     isnull(x)                ((x) is null)
//     delete * from t          delete from t
//     #m/d/yyyy#, '..', 5      a parameter, typed by the column it is compared with
//     ucase(x), max(x), ...    the same with the collation of texts, which an expression's result lacks
//     order by alias           the column of that name where there is one: the alias would hide it
//     a / b                    never the division of whole numbers
//     sum(x), avg(x), abs(x)   sum(number(x)), where texts and dates could be among the values
//     name, [name]             "name"
//
// A literal whose kind would not be that of what it is compared with, and arithmetic on dates and texts, are
// DataTypeMismatch. Only what the dialect knows gets through: a word that is no keyword is a name, and a
// function has to be on the list.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/value.h"
#include "sql/plain_statement.h"
#include "sql/sql_scope.h"

namespace tav::jet {

// One literal. It is constant, or some of its characters are values of the SqlText: then it is the text from
// `before` characters ahead of the first of them to `after` characters after the last.
struct Parameter {
    TokenKind kind = TokenKind::String;
    const Column* column = nullptr;  // what it is compared with
    std::size_t first_value = 0;
    std::size_t end_value = 0;
    std::size_t before = 0;
    std::size_t after = 0;
    Value constant;

    bool IsConstant() const { return first_value == end_value; }
    // The literal's value in a text of the same shape; converted for the comparison with the column.
    Value Read(const SqlText& sql) const;
    // The one value that is all there is between its apostrophes, in a text of the same shape; no value of a
    // literal with characters of the program's own.
    std::optional<TextView> WholeValue(const SqlText& sql) const;

 private:
    // Where it stands, apostrophes or "#" included.
    TextView Where(const SqlText& sql) const;
    Text Words(const SqlText& sql) const;
};

struct Rewritten {
    StatementKind kind = StatementKind::Select;
    const TableDefinition* changed = nullptr;
    std::vector<std::size_t> unnamed;     // columns of `changed` that an insert does not name
    bool reads_changed = false;           // in a select within the statement
    bool may_meet_twice = false;          // one row, by either side of an "or"
    std::optional<PlainStatement> plain;  // an insert or update of literals
    bool sorts_by_columns = false;        // select distinct without an order
    bool ignores_repeats = false;         // of rows (plain_statement.h)
    // select a, b from t: the table, and the columns by their places in it. Such a select needs no SQLite.
    const TableDefinition* listed = nullptr;
    std::vector<std::size_t> listed_columns;
    std::string sql;
    std::vector<Parameter> parameters;
};

// A text that is no single statement of the dialect over known tables is a Failure with the usual words.
Rewritten Rewrite(const SqlText& sql, const FindDefinition& find);

}  // namespace tav::jet
