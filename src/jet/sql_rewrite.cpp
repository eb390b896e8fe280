#include "jet/sql_rewrite.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "common/failure.h"
#include "jet/sql_collation.h"
#include "jet/sql_value.h"

namespace tav::jet {
namespace {

struct Function {
    TextView name;
    bool may_be_text;  // then the result gets the collation of texts
};
constexpr std::array<Function, 8> kFunctions = {{{u"abs", false},
                                                 {u"avg", false},
                                                 {u"count", false},
                                                 {u"iif", true},
                                                 {u"max", true},
                                                 {u"min", true},
                                                 {u"sum", false},
                                                 {u"ucase", true}}};

constexpr std::array<TextView, 6> kComparisons = {u"=", u"<>", u"<", u">", u"<=", u">="};

constexpr std::size_t kMostLiterals = 4000;

bool IsComparison(const Token& token) {
    return token.kind == TokenKind::Symbol &&
           std::find(kComparisons.begin(), kComparisons.end(), token.text) != kComparisons.end();
}

Value NumberValue(TextView text) {
    const std::string plain = ToUtf8(text);
    const char* end = plain.data() + plain.size();
    std::int64_t whole = 0;
    if (const auto read = std::from_chars(plain.data(), end, whole);
        read.ec == std::errc() && read.ptr == end) {
        return whole;
    }
    double number = 0;
    if (std::from_chars(plain.data(), end, number).ec != std::errc()) throw Failure(RunTimeError::Overflow);
    return number;
}

Value LiteralValue(TokenKind kind, TextView text) {
    switch (kind) {
        case TokenKind::Number:
            return NumberValue(text);
        case TokenKind::Date:
            return ReadDateLiteral(text);
        default:
            return Unquoted(text);
    }
}

class Rewriter {
 public:
    Rewriter(const SqlText& sql, const FindDefinition& find)
        : sql_(sql), statement_(Tokenize(sql), find), tokens_(statement_.tokens()) {}

    Rewritten Do() {
        out_.kind = statement_.kind();
        out_.changed = statement_.Changed();
        const Scope& outermost = statement_.Outermost();
        out_.sorts_by_columns = outermost.distinct && outermost.order.begin == 0;
        if (out_.kind == StatementKind::Insert) CheckInsertColumns();
        for (std::size_t i = 0; i < tokens_.size(); ++i) Emit(i);
        return std::move(out_);
    }

 private:
    const Token& At(std::size_t token) const {
        static const Token kNone;
        return token < tokens_.size() ? tokens_[token] : kNone;
    }

    void CheckInsertColumns() const {
        std::vector<Text> seen;
        for (std::size_t i = 4; At(3).Is(u"(") && i < tokens_.size() && !At(i).Is(u")"); ++i) {
            if (!IsName(At(i))) continue;
            const TextView name = At(i).text;
            if (!out_.changed->FindColumn(name)) {
                throw Failure(Text(u"The INSERT INTO statement contains the following unknown field name: '")
                                  .append(name)
                                  .append(u"'. Make sure you have typed the name correctly, and try the "
                                          u"operation again."));
            }
            seen.push_back(UpperCase(name));
        }
        std::sort(seen.begin(), seen.end());
        const auto twice = std::adjacent_find(seen.begin(), seen.end());
        if (twice != seen.end()) {
            throw Failure(Text(u"Duplicate output destination '").append(LowerCase(*twice)).append(u"'."));
        }
    }

    void Emit(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.IsLiteral()) {
            Literal(i);
        } else if (statement_.TableAt(i) != nullptr) {
            Name(statement_.TableAt(i)->name);
        } else if (IsName(token)) {
            if (At(i + 1).Is(u"(")) {
                CallOf(token);
            } else {
                ColumnName(i);
            }
        } else if (token.kind == TokenKind::Word) {
            Keyword(token);
        } else {
            Symbol(i);
        }
    }

    void Keyword(const Token& token) {
        if (token.Is(u"true") || token.Is(u"false")) {
            out_.sql += token.Is(u"true") ? "(-1) " : "0 ";
        } else {
            out_.sql += ToUtf8(LowerCase(token.text)) + ' ';
        }
    }

    void Name(TextView name) {
        if (name.find(u'"') != name.npos || name.find(u'\0') != name.npos) {
            throw Failure(Text(u"'").append(name).append(u"' is not a valid name."));
        }
        out_.sql += '"' + ToUtf8(name) + "\" ";
    }

    // The word before a "(": what stands behind its ")" is decided here.
    void CallOf(const Token& token) {
        if (token.Is(u"isnull")) {
            out_.sql += "(";
            closing_.push_back(") is null) ");
            return;
        }
        const auto known = std::find_if(kFunctions.begin(), kFunctions.end(),
                                        [&](const Function& function) { return token.Is(function.name); });
        if (known == kFunctions.end()) {
            throw Failure(Text(u"Undefined function '").append(token.text).append(u"' in expression."));
        }
        out_.sql += ToUtf8(known->name);
        closing_.push_back(known->may_be_text ? std::string(") collate ") + kCollation + ' ' : ") ");
    }

    void Symbol(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.Is(u"(")) {
            const bool call = i > 0 && IsName(tokens_[i - 1]) && statement_.TableAt(i - 1) == nullptr;
            if (!call) closing_.push_back(") ");
            out_.sql += '(';
        } else if (token.Is(u")")) {
            out_.sql += closing_.empty() ? ") " : closing_.back();
            if (!closing_.empty()) closing_.pop_back();
        } else if (token.Is(u"/")) {
            out_.sql += "* 1.0 / ";
        } else if (!(token.Is(u"*") && i == 1 && out_.kind == StatementKind::Delete)) {
            out_.sql += ToUtf8(token.text) + ' ';
        }
    }

    void ColumnName(std::size_t i) {
        const Token& token = tokens_[i];
        const Scope& scope = statement_.ScopeOf(i);
        const bool alone = !At(i + 1).Is(u".") && (At(i - 1).Is(u"by") || At(i - 1).Is(u","));
        const bool hidden =
            alone && scope.order.Contains(i) &&
            std::any_of(scope.columns.begin(), scope.columns.end(),
                        [&](const ResultColumn& column) { return EqualNoCase(column.alias, token.text); });
        if (hidden) {
            const Statement::Meaning meaning = statement_.Resolve(scope, {}, token.text);
            if (meaning.found && !meaning.source.empty()) {
                Name(meaning.source);
                out_.sql += ". ";
            }
        }
        Name(token.text);
    }

    void Literal(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.kind == TokenKind::Number && statement_.ScopeOf(i).order.Contains(i)) {
            out_.sql += ToUtf8(token.text) + ' ';  // the number of a result column
            return;
        }
        Parameter parameter;
        parameter.kind = token.kind;
        parameter.column = ComparedWith(i);
        parameter.first_value = token.first_value;
        parameter.end_value = token.end_value;
        if (token.HasValues()) {
            const SqlText::Span& last = sql_.values()[token.end_value - 1];
            parameter.before = sql_.values()[token.first_value].begin - token.begin;
            parameter.behind = token.begin + token.text.size() - (last.begin + last.length);
        } else {
            parameter.constant = LiteralValue(token.kind, token.text);
            if (parameter.column != nullptr) {
                parameter.constant = ForComparison(*parameter.column, std::move(parameter.constant));
            }
        }
        if (out_.parameters.size() == kMostLiterals) throw Failure(u"Query is too complex.");
        out_.parameters.push_back(std::move(parameter));
        out_.sql += '?' + std::to_string(out_.parameters.size()) + ' ';
    }

    // The column a literal is compared with; what an assignment or insert stores is converted by the table.
    const Column* ComparedWith(std::size_t i) const {
        if (i == 0 || statement_.Assignments().Contains(i)) return nullptr;
        const Scope& scope = statement_.ScopeOf(i);
        if (IsComparison(At(i - 1))) return statement_.ColumnOf(scope, OperandBefore(i - 1));
        if (IsComparison(At(i + 1))) return statement_.ColumnOf(scope, OperandBehind(i + 2));
        if (At(i - 1).Is(u"between")) return statement_.ColumnOf(scope, OperandBefore(i - 1));
        if (i > 3 && At(i - 1).Is(u"and") && At(i - 3).Is(u"between")) {
            return statement_.ColumnOf(scope, OperandBefore(i - 3));
        }
        return ColumnOfList(i);
    }

    // column [not] in (literal, literal, ...)
    const Column* ColumnOfList(std::size_t i) const {
        std::size_t open = i - 1;
        while (open > 0 && (At(open).Is(u",") || At(open).IsLiteral())) --open;
        if (!At(open).Is(u"(") || open < 2 || !At(open - 1).Is(u"in")) return nullptr;
        const std::size_t end = At(open - 2).Is(u"not") ? open - 2 : open - 1;
        return statement_.ColumnOf(statement_.ScopeOf(i), OperandBefore(end));
    }

    TokenRange OperandBefore(std::size_t end) const {
        std::size_t begin = end;
        if (begin > 0 && At(begin - 1).Is(u")")) {
            std::size_t depth = 0;
            do {
                --begin;
                if (At(begin).Is(u")")) ++depth;
                if (At(begin).Is(u"(")) --depth;
            } while (begin > 0 && depth > 0);
        }
        if (begin > 0 && IsName(At(begin - 1))) --begin;
        if (begin > 1 && At(begin - 1).Is(u".")) begin -= 2;
        return {begin, end};
    }

    TokenRange OperandBehind(std::size_t begin) const {
        std::size_t end = begin + 1;
        if (At(end).Is(u".")) end += 2;
        if (At(end).Is(u"(")) {
            std::size_t depth = 0;
            do {
                if (At(end).Is(u"(")) ++depth;
                if (At(end).Is(u")")) --depth;
                ++end;
            } while (end < tokens_.size() && depth > 0);
        }
        return {begin, std::min(end, tokens_.size())};
    }

    const SqlText& sql_;
    Statement statement_;
    const std::vector<Token>& tokens_;
    std::vector<std::string> closing_;  // what the open parentheses are closed with
    Rewritten out_;
};

}  // namespace

TextView Parameter::Where(const SqlText& sql) const {
    const SqlText::Span& last = sql.values()[end_value - 1];
    const std::size_t begin = sql.values()[first_value].begin - before;
    return TextView(sql.text()).substr(begin, last.begin + last.length + behind - begin);
}

Value Parameter::Read(const SqlText& sql) const {
    if (IsConstant()) return constant;
    Value value = LiteralValue(kind, Where(sql));
    return column == nullptr ? value : ForComparison(*column, std::move(value));
}

Rewritten Rewrite(const SqlText& sql, const FindDefinition& find) {
    return Rewriter(sql, find).Do();
}

}  // namespace tav::jet
