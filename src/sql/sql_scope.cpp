#include "sql/sql_scope.h"

#include <algorithm>
#include <array>

#include "common/concat.h"
#include "common/failure.h"

namespace tav::jet {
namespace {

constexpr int kMostSelects = 32;

constexpr std::array<TextView, 34> kKeywords = {
    u"select", u"distinct", u"all",    u"from",    u"where", u"and",   u"or",     u"not",   u"in",
    u"is",     u"null",     u"as",     u"on",      u"left",  u"right", u"inner",  u"outer", u"join",
    u"group",  u"order",    u"by",     u"having",  u"asc",   u"desc",  u"insert", u"into",  u"values",
    u"update", u"set",      u"delete", u"between", u"true",  u"false", u"exists"};

}  // namespace

bool IsKeyword(const Token& token) {
    return token.kind == TokenKind::Word &&
           std::any_of(kKeywords.begin(), kKeywords.end(), [&](TextView word) { return token.Is(word); });
}
bool IsName(const Token& token) {
    return token.kind == TokenKind::Name || (token.kind == TokenKind::Word && !IsKeyword(token));
}

// Reads the tokens once, from the first to the last.
class StatementReader {
 public:
    StatementReader(Statement& statement, const FindDefinition& find)
        : statement_(statement), tokens_(statement.tokens_), find_(find) {}

    void Read() {
        if (At(0).Is(u"select")) {
            Select(0, nullptr);
        } else if (At(0).Is(u"insert") && At(1).Is(u"into")) {
            Changing(StatementKind::Insert, 2);
        } else if (At(0).Is(u"update")) {
            Changing(StatementKind::Update, 1);
        } else if (At(0).Is(u"delete")) {
            Changing(StatementKind::Delete, At(1).Is(u"*") ? 3 : 2);
        } else {
            throw Failure(u"Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'.");
        }
    }

 private:
    enum class Clause { Columns, From, Condition, Order };

    const Token& At(std::size_t token) const { return statement_.At(token); }

    const TableDefinition* Table(std::size_t token) {
        const TableDefinition* table = IsName(At(token)) ? find_(At(token).text) : nullptr;
        if (table == nullptr) {
            const TextView kind = statement_.kind_ == StatementKind::Insert && scopes_read_ == 1
                                      ? u"Could not find output table '"
                                      : u"Could not find input table '";
            throw Failure(Concat(kind, At(token).text, u"'."));
        }
        statement_.table_at_[token] = table;
        return table;
    }

    Scope& NewScope(const Scope* outer) {
        ++scopes_read_;
        statement_.scopes_.push_back(std::make_unique<Scope>());
        statement_.scopes_.back()->outer = outer;
        return *statement_.scopes_.back();
    }

    // insert into T ..., update T set ..., delete [*] from T ...
    void Changing(StatementKind kind, std::size_t table) {
        statement_.kind_ = kind;
        Scope& scope = NewScope(nullptr);
        statement_.changed_ = Table(table);
        scope.sources.push_back({At(table).text, statement_.changed_, nullptr});
        std::fill(statement_.scope_of_.begin(), statement_.scope_of_.end(), &scope);
        for (std::size_t i = table + 1; i < tokens_.size(); ++i) {
            if (!At(i).Is(u"select")) continue;
            i = Select(i, kind == StatementKind::Insert ? nullptr : &scope);
            Belongs(scope, i);
        }
    }

    void Belongs(const Scope& scope, std::size_t first) {
        if (first >= tokens_.size()) return;
        std::fill(statement_.scope_of_.begin() + static_cast<std::ptrdiff_t>(first),
                  statement_.scope_of_.end(), &scope);
    }

    // Reads the select that begins at `first`; the index of the ")" that ends it, or the tokens' end.
    std::size_t Select(std::size_t first, const Scope* outer) {
        if (scopes_read_ > kMostSelects) throw Failure(u"Query is too complex.");
        Scope& scope = NewScope(outer);
        Belongs(scope, first);
        std::size_t i = first + 1;
        scope.distinct = At(i).Is(u"distinct");
        if (scope.distinct) ++i;
        scope.columns.push_back({{i, i}, {}});
        Clause clause = Clause::Columns;
        FromClause from;
        std::size_t depth = 0;
        for (; i < tokens_.size(); ++i) {
            const Token& token = At(i);
            if (token.Is(u"(") && At(i + 1).Is(u"select")) {
                const bool is_source = clause == Clause::From && from.expects_source;
                const std::size_t inner = statement_.scopes_.size();
                // A select in a from clause does not see its neighbours.
                i = Select(i + 1, is_source ? outer : &scope);
                Belongs(scope, i);
                if (is_source) {
                    scope.sources.push_back({{}, nullptr, statement_.scopes_[inner].get()});
                    from.AfterSource();
                }
            } else if (token.Is(u"(")) {
                ++depth;
            } else if (token.Is(u")")) {
                if (depth-- == 0) break;
            } else if (depth == 0 && NextClause(token, clause)) {
                from.expects_source = clause == Clause::From;
                if (clause == Clause::Order) scope.order = {i + 2, i + 2};
            } else if (clause == Clause::From) {
                FromToken(scope, from, i, depth);
            }
            if (clause == Clause::Columns) Column(scope, i, depth);
            if (clause == Clause::Order) scope.order.end = i + 1;
        }
        return i;
    }

    static bool NextClause(const Token& token, Clause& clause) {
        if (token.Is(u"from")) {
            clause = Clause::From;
        } else if (token.Is(u"order")) {
            clause = Clause::Order;
        } else if (token.Is(u"where") || token.Is(u"group") || token.Is(u"having")) {
            clause = Clause::Condition;
        } else {
            return false;
        }
        return true;
    }

    void Column(Scope& scope, std::size_t i, std::size_t depth) {
        if (depth == 0 && At(i).Is(u",")) {
            scope.columns.push_back({{i + 1, i + 1}, {}});
            return;
        }
        ResultColumn& column = scope.columns.back();
        if (depth == 0 && At(i).Is(u"as") && IsName(At(i + 1))) column.alias = At(i + 1).text;
        if (column.alias.empty()) column.expression.end = i + 1;
    }

    struct FromClause {
        bool expects_source = false;
        bool expects_alias = false;
        bool in_condition = false;
        std::size_t condition_depth = 0;

        void AfterSource() {
            expects_source = false;
            expects_alias = true;
        }
    };

    void FromToken(Scope& scope, FromClause& from, std::size_t i, std::size_t depth) {
        const Token& token = At(i);
        if (token.Is(u"as")) return;
        if (from.expects_source && IsName(token)) {
            scope.sources.push_back({token.text, Table(i), nullptr});
            from.AfterSource();
            return;
        }
        if (from.expects_alias && IsName(token)) scope.sources.back().name = token.text;
        from.expects_alias = false;
        if (token.Is(u"on")) {
            from.in_condition = true;
            from.condition_depth = depth;
        } else if (token.Is(u"join") ||
                   (token.Is(u",") && (!from.in_condition || depth <= from.condition_depth))) {
            from.in_condition = false;
            from.expects_source = true;
        }
    }

    Statement& statement_;
    const std::vector<Token>& tokens_;
    const FindDefinition& find_;
    int scopes_read_ = 0;
};

Statement::Statement(std::vector<Token> tokens, const FindDefinition& find)
    : tokens_(std::move(tokens)), scope_of_(tokens_.size()), table_at_(tokens_.size()) {
    StatementReader(*this, find).Read();
}

}  // namespace tav::jet
