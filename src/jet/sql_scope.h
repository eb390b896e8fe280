// Which table's column a name in a statement means.
//
// A statement is read into scopes, one for each select in it: its result columns, the tables and selects in
// its from clause, its order by clause. Grammar is not checked here (SQLite does that): what is read is as
// much as is needed to find the column behind a name.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "jet/sql_token.h"
#include "jet/table_definition.h"

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

struct ResultColumn {
    TokenRange expression;
    TextView alias;  // empty without "as"
};

struct Scope {
    const Scope* outer = nullptr;
    bool distinct = false;
    std::vector<ResultColumn> columns;
    std::vector<Source> sources;
    TokenRange order;  // behind "order by"
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
    // The tokens between "set" and "where" of an update.
    const TokenRange& Assignments() const { return assignments_; }
    // The definition a token names where a table stands, or nullptr.
    const TableDefinition* TableAt(std::size_t token) const { return table_at_[token]; }

    struct Meaning {
        bool found = false;
        const Column* column = nullptr;  // nullptr also for an expression's result
        TextView source;                 // the name of the table or select it belongs to
    };
    // `qualifier` may be empty.
    Meaning Resolve(const Scope& scope, TextView qualifier, TextView name) const;
    // The column whose values an expression has: a name, or min, max and the like of one.
    const Column* ColumnOf(const Scope& scope, TokenRange expression) const;

 private:
    friend class StatementReader;
    Meaning ResolveIn(const Source& source, TextView name) const;
    TextView NameOf(const ResultColumn& column) const;

    std::vector<Token> tokens_;
    StatementKind kind_ = StatementKind::Select;
    std::vector<std::unique_ptr<Scope>> scopes_;
    std::vector<const Scope*> scope_of_;
    std::vector<const TableDefinition*> table_at_;
    const TableDefinition* changed_ = nullptr;
    TokenRange assignments_;
};

// A word of the dialect that is no name.
bool IsKeyword(const Token& token);
bool IsName(const Token& token);

}  // namespace tav::jet
