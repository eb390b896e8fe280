#include "sql/sql_operand.h"

#include <algorithm>
#include <array>

namespace tav::jet {
namespace {

enum class Result { Number, Text, OfArgument, Amount, Choice };

struct Function {
    TextView name;
    Result result;
};
constexpr std::array<Function, 9> kFunctions = {{{u"abs", Result::Amount},
                                                 {u"avg", Result::Amount},
                                                 {u"count", Result::Number},
                                                 {u"iif", Result::Choice},
                                                 {u"isnull", Result::Number},
                                                 {u"max", Result::OfArgument},
                                                 {u"min", Result::OfArgument},
                                                 {u"sum", Result::Amount},
                                                 {u"ucase", Result::Text}}};

Operand OperandOfColumn(const Column& column) {
    switch (column.type) {
        case ColumnType::Text:
        case ColumnType::Memo:
            return {Kind::Text, &column};
        case ColumnType::Date:
            return {Kind::Date, &column};
        case ColumnType::Binary:
        case ColumnType::Ole:
        case ColumnType::Guid:
            return {Kind::Other, &column};
        default:
            return {Kind::Number, &column};
    }
}

// What sum and the like make of the values: always a number, and of a number column still in its form.
Operand Amount(const Operand& argument) {
    const bool counts = argument.kind == Kind::Number && argument.column != nullptr &&
                        argument.column->type != ColumnType::Boolean;
    return counts ? argument : Operand{Kind::Number, nullptr};
}

Operand Either(const Operand& a, const Operand& b) {
    if (a.kind == Kind::Null) return b;
    if (b.kind == Kind::Null) return a;
    if (a.kind != b.kind) return {Kind::Other, nullptr};
    return {a.kind, a.column == b.column ? a.column : nullptr};
}

Operand OperandOfWord(const Token& token) {
    switch (token.kind) {
        case TokenKind::Number:
            return {Kind::Number, nullptr};
        case TokenKind::String:
            return {Kind::Text, nullptr};
        case TokenKind::Date:
            return {Kind::Date, nullptr};
        default:
            if (token.Is(u"null")) return {Kind::Null, nullptr};
            return {token.Is(u"true") || token.Is(u"false") ? Kind::Number : Kind::Other, nullptr};
    }
}

bool IsTerm(const Token& token) {
    return token.IsLiteral() || IsName(token) || token.Is(u"null") || token.Is(u"true") || token.Is(u"false");
}

}  // namespace

bool IsArithmetic(const Token& token) {
    return token.Is(u"+") || token.Is(u"-") || token.Is(u"*") || token.Is(u"/");
}

TextView Operands::NameOf(const ResultColumn& column) const {
    if (!column.alias.empty() || column.expression.begin >= column.expression.end) return column.alias;
    const Token& last = At(column.expression.end - 1);
    const std::size_t length = column.expression.end - column.expression.begin;
    const bool plain = length == 1 || (length == 3 && At(column.expression.end - 2).Is(u"."));
    return plain && IsName(last) ? last.text : TextView();
}

Operands::Meaning Operands::ResolveIn(const Source& source, TextView name) const {
    if (source.table != nullptr) {
        const auto column = source.table->FindColumn(name);
        return column ? Meaning{true, OperandOfColumn(source.table->columns[*column]), source.name}
                      : Meaning();
    }
    for (const ResultColumn& column : source.select->columns) {
        if (column.expression.begin >= column.expression.end) continue;
        if (At(column.expression.end - 1).Is(u"*")) {
            for (const Source& inner : source.select->sources) {
                const Meaning meaning = ResolveIn(inner, name);
                if (meaning.found) return {true, meaning.operand, source.name};
            }
        } else if (EqualNoCase(NameOf(column), name)) {
            if (!column.operand) column.operand = OperandOf(column.expression);
            return {true, *column.operand, source.name};
        }
    }
    return {};
}

Operands::Meaning Operands::Resolve(const Scope& scope, TextView qualifier, TextView name) const {
    for (const Scope* at = &scope; at != nullptr; at = at->outer) {
        for (const Source& source : at->sources) {
            if (!qualifier.empty() && !EqualNoCase(source.name, qualifier)) continue;
            const Meaning meaning = ResolveIn(source, name);
            if (meaning.found) return meaning;
        }
    }
    return {};
}

// The token after the ")" of a "(".
std::size_t Operands::Closed(std::size_t open) const {
    std::size_t depth = 0;
    for (std::size_t i = open; i < statement_.tokens().size(); ++i) {
        if (At(i).Is(u"(")) ++depth;
        if (At(i).Is(u")") && --depth == 0) return i + 1;
    }
    return statement_.tokens().size();
}

TokenRange Operands::TermBefore(std::size_t end) const {
    std::size_t begin = end - 1;
    if (At(begin).Is(u")")) {
        for (std::size_t depth = 1; depth > 0 && begin > 0;) {
            --begin;
            if (At(begin).Is(u")")) ++depth;
            if (At(begin).Is(u"(")) --depth;
        }
        if (IsName(At(begin - 1))) --begin;
    } else if (!IsTerm(At(begin))) {
        return {end, end};
    }
    if (begin > 1 && At(begin - 1).Is(u".")) begin -= 2;
    return {begin, end};
}

TokenRange Operands::TermAfter(std::size_t begin) const {
    if (At(begin).Is(u"(")) return {begin, Closed(begin)};
    if (!IsTerm(At(begin))) return {begin, begin};
    const std::size_t end =
        At(begin + 1).Is(u".") ? std::min(begin + 3, statement_.tokens().size()) : begin + 1;
    return {begin, At(end).Is(u"(") ? Closed(end) : end};
}

TokenRange Operands::SumBefore(std::size_t end) const {
    std::size_t begin = TermBefore(end).begin;
    while (begin < end && IsArithmetic(At(begin - 1))) begin = TermBefore(begin - 1).begin;
    return {begin, end};
}

TokenRange Operands::SumAfter(std::size_t begin) const {
    std::size_t end = begin;
    do {
        while (IsArithmetic(At(end))) ++end;
        end = TermAfter(end).end;
    } while (IsArithmetic(At(end)));
    return {begin, end};
}

Operand Operands::ResultOf(TokenRange call) const {
    const Token& name = At(call.begin);
    const auto known = std::find_if(kFunctions.begin(), kFunctions.end(),
                                    [&](const Function& function) { return name.Is(function.name); });
    if (known == kFunctions.end()) return {Kind::Other, nullptr};
    if (known->result == Result::Number) return {Kind::Number, nullptr};
    if (known->result == Result::Text) return {Kind::Text, nullptr};
    std::vector<TokenRange> arguments = {{call.begin + 2, call.end - 1}};
    for (std::size_t i = call.begin + 2; i + 1 < call.end; ++i) {
        if (At(i).Is(u"(")) i = Closed(i) - 1;
        if (!At(i).Is(u",")) continue;
        arguments.back().end = i;
        arguments.push_back({i + 1, call.end - 1});
    }
    if (known->result == Result::Choice) {
        if (arguments.size() != 3) return {Kind::Other, nullptr};
        return Either(OperandOf(arguments[1]), OperandOf(arguments[2]));
    }
    if (arguments.size() != 1) return {Kind::Other, nullptr};
    const Operand argument = OperandOf(arguments[0]);
    return known->result == Result::Amount ? Amount(argument) : argument;
}

Operand Operands::OperandOf(TokenRange expression) const {
    auto& [begin, end] = expression;
    while (At(begin).Is(u"(") && Closed(begin) == end && begin + 1 < end) {
        ++begin;
        --end;
    }
    if (At(begin).Is(u"distinct")) ++begin;
    if (begin >= end) return {Kind::Null, nullptr};
    if (At(begin).Is(u"select")) {
        const std::vector<ResultColumn>& columns = statement_.ScopeOf(begin).columns;
        // One that lacks its parentheses is itself a column of the select around it.
        if (columns.empty() || columns.front().expression.begin <= begin) return {Kind::Other, nullptr};
        return OperandOf(columns.front().expression);
    }
    if (end - begin > 1 && TermAfter(begin).end != end) return {Kind::Number, nullptr};  // of operators
    if (!IsName(At(begin))) return OperandOfWord(At(begin));
    if (At(begin + 1).Is(u"(") && end - begin > 2) return ResultOf(expression);
    const TextView qualifier = end - begin == 3 ? At(begin).text : TextView();
    return Resolve(statement_.ScopeOf(begin), qualifier, At(end - 1).text).operand;
}

}  // namespace tav::jet
