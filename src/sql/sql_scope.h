// Which table's column a name in a statement means.
//
// A statement is read into scopes, one for each select in it: its result columns, the tables and selects in
// its from clause, its order by clause. Grammar is not checked here (SQLite does that): what is read is as
// much as is needed to find the column that a name means.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "jet/schema/table_definition.h"
#include "sql/sql_token.h"

namespace tav::jet {

struct Scope;

struct TokenRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool Contains(std::size_t token) const { return token >= begin && token < end; }
};

// What stands in a from clause.
struct Source {
    TextView name;                           // the alias, or the table's own name
    const TableDefinition* table = nullptr;  // else
    const Scope* select = nullptr;
};

enum class Kind { Unknown, Null, Number, Text, Date, Other };

// What an expression's values are.
struct Operand {
    Kind kind = Kind::Unknown;       // Unknown: a name that means no column
    const Column* column = nullptr;  // whose values they are, if it is one column's
};

struct ResultColumn {
    TokenRange expression;
    TextView alias;                               // empty without "as"
    mutable std::optional<Operand> operand = {};  // once it was asked for
};

struct Scope {
    const Scope* outer = nullptr;
    bool distinct = false;
    std::vector<ResultColumn> columns;
    std::vector<Source> sources;
    TokenRange order;  // after "order by"
};

enum class StatementKind { Select, Insert, Update, Delete };

// The definition of a table by name; nullptr when there is none.
using FindDefinition = std::function<const TableDefinition*(TextView name)>;

class Statement {
 public:
    // An unknown table, or a statement of another kind, is a Failure with the usual words.
    Statement(std::vector<Token> tokens, const FindDefinition& find);

    StatementKind kind() const { return kind_; }
    const std::vector<Token>& tokens() const { return tokens_; }
    const Scope& ScopeOf(std::size_t token) const { return *scope_of_[token]; }
    const Scope& Outermost() const { return *scopes_.front(); }
    // The table a changing statement changes; nullptr for a select.
    const TableDefinition* Changed() const { return changed_; }
    // The definition a token names where a table stands, or nullptr.
    const TableDefinition* TableAt(std::size_t token) const { return table_at_[token]; }

    // Behind the last token there are empty ones.
    const Token& At(std::size_t token) const {
        static const Token kNone;
        return token < tokens_.size() ? tokens_[token] : kNone;
    }

 private:
    friend class StatementReader;
    std::vector<Token> tokens_;
    StatementKind kind_ = StatementKind::Select;
    std::vector<std::unique_ptr<Scope>> scopes_;
    std::vector<const Scope*> scope_of_;
    std::vector<const TableDefinition*> table_at_;
    const TableDefinition* changed_ = nullptr;
};

// A word of the dialect that is no name.
bool IsKeyword(const Token& token);
bool IsName(const Token& token);

}  // namespace tav::jet
