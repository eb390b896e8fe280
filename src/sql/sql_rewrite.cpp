#include "sql/sql_rewrite.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "common/concat.h"
#include "common/failure.h"
#include "sql/sql_collation.h"
#include "sql/sql_operand.h"
#include "sql/sql_value.h"

namespace tav::jet {
namespace {

struct FunctionArguments {
    TextView name;
    bool may_be_text;   // then the result gets the collation of texts
    bool takes_amount;  // then texts among the argument's values are read as numbers
};
constexpr std::array<FunctionArguments, 8> kFunctionArguments = {{{u"abs", false, true},
                                                                  {u"avg", false, true},
                                                                  {u"count", false, false},
                                                                  {u"iif", true, false},
                                                                  {u"max", true, false},
                                                                  {u"min", true, false},
                                                                  {u"sum", false, true},
                                                                  {u"ucase", true, false}}};

constexpr std::array<TextView, 7> kComparisons = {u"=", u"<>", u"is", u"<", u">", u"<=", u">="};

constexpr std::size_t kMostLiterals = 4000;
constexpr std::size_t kDeepest = 200;  // parentheses within each other

bool IsComparison(const Token& token) {
    return std::any_of(kComparisons.begin(), kComparisons.end(),
                       [&](TextView comparison) { return token.Is(comparison); });
}

bool IsOrder(const Token& token) {
    return !token.Is(u"=") && !token.Is(u"<>") && !token.Is(u"is");
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
            return WithoutDoubling(text.substr(1, text.size() - 2));
    }
}

class Rewriter {
 public:
    Rewriter(const SqlText& sql, const FindDefinition& find)
        : sql_(sql), statement_(Tokenize(sql), find), operands_(statement_), tokens_(statement_.tokens()) {}

    Rewritten Do() {
        out_.kind = statement_.kind();
        out_.changed = statement_.Changed();
        const Scope& outermost = statement_.Outermost();
        out_.sorts_by_columns = outermost.distinct && outermost.order.begin == 0;
        out_.ignores_repeats = IgnoresRepeats(statement_);
        if (out_.kind == StatementKind::Insert) ReadInsertColumns();
        out_.plain = ReadPlain(statement_);
        CheckDepth();
        for (std::size_t i = 0; i < tokens_.size(); ++i) Emit(i);
        if (out_.kind == StatementKind::Select) ReadListedColumns();
        out_.may_meet_twice =
            std::ranges::any_of(tokens_, [](const Token& token) { return token.Is(u"or"); });
        out_.reads_changed = out_.changed != nullptr && Mentions(*out_.changed) > 1;
        return std::move(out_);
    }

 private:
    const Token& At(std::size_t token) const { return statement_.At(token); }

    std::ptrdiff_t Mentions(const TableDefinition& table) const {
        std::ptrdiff_t mentions = 0;
        for (std::size_t i = 0; i < tokens_.size(); ++i) mentions += statement_.TableAt(i) == &table;
        return mentions;
    }

    void CheckDepth() const {
        std::size_t depth = 0;
        for (const Token& token : tokens_) {
            if (token.Is(u"(") && ++depth > kDeepest) throw Failure(u"Query is too complex.");
            if (token.Is(u")") && depth > 0) --depth;
        }
    }

    void ReadInsertColumns() {
        std::vector<Text> seen;
        for (std::size_t i = 4; At(3).Is(u"(") && i < tokens_.size() && !At(i).Is(u")"); ++i) {
            if (!IsName(At(i))) continue;
            const TextView name = At(i).text;
            if (!out_.changed->FindColumn(name)) {
                throw Failure(
                    Concat(u"The INSERT INTO statement contains the following unknown field name: '", name,
                           u"'. Make sure you have typed the name correctly, and try the "
                           u"operation again."));
            }
            seen.push_back(UpperCase(name));
        }
        std::sort(seen.begin(), seen.end());
        const auto twice = std::adjacent_find(seen.begin(), seen.end());
        if (twice != seen.end()) {
            throw Failure(Concat(u"Duplicate output destination '", LowerCase(*twice), u"'."));
        }
        for (std::size_t i = 0; !seen.empty() && i < out_.changed->columns.size(); ++i) {
            const Text name = UpperCase(out_.changed->columns[i].name);
            if (!std::binary_search(seen.begin(), seen.end(), name)) out_.unnamed.push_back(i);
        }
    }

    // Of a select that is a list of columns and one table, and nothing else.
    void ReadListedColumns() {
        const TableDefinition* table = statement_.TableAt(tokens_.size() - 1);
        std::vector<std::size_t> columns;
        for (std::size_t i = 1; table != nullptr && i + 1 < tokens_.size(); i += 2) {
            const bool last = i + 3 == tokens_.size();
            const auto column = IsName(At(i)) ? table->FindColumn(At(i).text) : std::nullopt;
            if (!column || !At(i + 1).Is(last ? u"from" : u",")) return;
            columns.push_back(*column);
        }
        out_.listed = columns.empty() ? nullptr : table;
        out_.listed_columns = std::move(columns);
    }

    void Emit(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.IsLiteral()) {
            Literal(i);
        } else if (statement_.TableAt(i) != nullptr) {
            Name(statement_.TableAt(i)->name);
        } else if (IsName(token)) {
            if (At(i + 1).Is(u"(")) {
                CallOf(i);
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
            throw Failure(Concat(u"'", name, u"' is not a valid name."));
        }
        out_.sql += '"' + ToUtf8(name) + "\" ";
    }

    // The word before a "(", and the "(": what stands for its ")" is decided here.
    void CallOf(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.Is(u"isnull")) {
            out_.sql += "((";
            open_.push_back({i + 1, ") is null) "});
            return;
        }
        const auto known =
            std::find_if(kFunctionArguments.begin(), kFunctionArguments.end(),
                         [&](const FunctionArguments& function) { return token.Is(function.name); });
        if (known == kFunctionArguments.end()) {
            throw Failure(Concat(u"Undefined function '", token.text, u"' in expression."));
        }
        const TokenRange call = operands_.TermAfter(i);
        const bool reads_texts =
            known->takes_amount && operands_.OperandOf({i + 2, call.end - 1}).kind != Kind::Number;
        out_.sql += ToUtf8(known->name) + (reads_texts ? "(number(" : "(");
        open_.push_back({i + 1, reads_texts          ? ")) "
                                : known->may_be_text ? std::string(") collate ") + kCollation + ' '
                                                     : ") "});
    }

    void Symbol(std::size_t i) {
        const Token& token = tokens_[i];
        if (IsArithmetic(token)) CheckArithmetic(i);
        if (token.Is(u"(")) {
            if (!open_.empty() && open_.back().at == i) return;
            open_.push_back({i, ") "});
            out_.sql += '(';
        } else if (token.Is(u")")) {
            out_.sql += open_.empty() ? ") " : open_.back().closing;
            if (!open_.empty()) open_.pop_back();
        } else if (token.Is(u",") && !open_.empty() && IsTuple(open_.back().at)) {
            throw Failure(u"Syntax error (comma) in query expression ','.");
        } else if (token.Is(u"/")) {
            out_.sql += "* 1.0 / ";
        } else if (!(token.Is(u"*") && i == 1 && out_.kind == StatementKind::Delete)) {
            out_.sql += ToUtf8(token.text) + ' ';
        }
    }

    // SQLite would take a date's bytes and the beginning of a text for a number.
    void CheckArithmetic(std::size_t i) const {
        const TokenRange before = operands_.TermBefore(i);
        if (At(i).Is(u"*") && before.begin == before.end) return;  // all columns
        for (const TokenRange& term : {before, operands_.TermAfter(i + 1)}) {
            const Operand operand = operands_.OperandOf(term);
            const bool refused =
                operand.kind == Kind::Text || operand.kind == Kind::Date || operand.kind == Kind::Other;
            if (!refused) continue;
            throw Failure(RunTimeError::DataTypeMismatch,
                          operand.column != nullptr ? TextView(operand.column->name) : At(term.begin).text);
        }
    }

    // SQLite takes these for a row's internal number.
    void RefuseRowNumber(TextView name) const {
        constexpr TextView kRowNumbers[] = {u"rowid", u"oid", u"_rowid_"};
        const auto means = [&](TextView number) { return EqualNoCase(number, name); };
        if (std::ranges::none_of(kRowNumbers, means)) return;
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            if (statement_.TableAt(i) != nullptr && statement_.TableAt(i)->FindColumn(name)) return;
        }
        throw Failure(u"No value given for one or more required parameters.").In(Text(name));
    }

    void ColumnName(std::size_t i) {
        const Token& token = tokens_[i];
        if (!At(i - 1).Is(u"as")) RefuseRowNumber(token.text);
        const Scope& scope = statement_.ScopeOf(i);
        const bool alone = !At(i + 1).Is(u".") && (At(i - 1).Is(u"by") || At(i - 1).Is(u","));
        const bool hidden =
            alone && scope.order.Contains(i) &&
            std::any_of(scope.columns.begin(), scope.columns.end(),
                        [&](const ResultColumn& column) { return EqualNoCase(column.alias, token.text); });
        if (hidden) {
            const Operands::Meaning meaning = operands_.Resolve(scope, {}, token.text);
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
        parameter.column = ComparedColumn(i);
        parameter.first_value = token.first_value;
        parameter.end_value = token.end_value;
        if (token.HasValues()) {
            const SqlText::Span& last = sql_.values()[token.end_value - 1];
            parameter.before = sql_.values()[token.first_value].begin - token.begin;
            parameter.after = token.begin + token.text.size() - (last.begin + last.length);
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

    struct Comparison {
        TokenRange with;  // empty: a literal that is not compared
        bool ordered = false;
    };

    // The column a literal is compared with, and so is of the kind of. What an assignment or insert stores is
    // converted by the table.
    const Column* ComparedColumn(std::size_t i) const {
        TokenRange literal{i, i + 1};
        std::size_t parentheses = 0;  // around it
        while (At(literal.begin - 1).Is(u"(") && At(literal.end).Is(u")") && IsPlain(literal.begin - 1)) {
            --literal.begin;
            ++literal.end;
            ++parentheses;
        }
        const bool alone = !IsArithmetic(At(literal.begin - 1)) && !IsArithmetic(At(literal.end));
        if (!alone) literal = {operands_.SumBefore(literal.end).begin, operands_.SumAfter(literal.begin).end};
        const Comparison comparison = ComparisonOf(literal, parentheses);
        if (comparison.with.begin == comparison.with.end) return nullptr;
        const Operand operand = operands_.OperandOf(comparison.with);
        if (At(i).kind != TokenKind::Number && operand.kind == Kind::Unknown) {
            std::size_t name = comparison.with.end - 1;
            while (At(name).Is(u")")) --name;
            throw Failure(u"No value given for one or more required parameters.").In(At(name).text);
        }
        if (!Comparable(At(i).kind, operand, alone, comparison.ordered)) {
            const bool names = alone && operand.kind == Kind::Text;
            throw Failure(RunTimeError::DataTypeMismatch,
                          Text(At(i).text).append(names ? NameOf(operand.column) : Text()));
        }
        return alone ? operand.column : nullptr;
    }

    // " (table.column)" of a column of one of the statement's tables.
    Text NameOf(const Column* column) const {
        for (std::size_t i = 0; i < tokens_.size() && column != nullptr; ++i) {
            const TableDefinition* table = statement_.TableAt(i);
            const auto same = [&](const Column& other) { return &other == column; };
            if (table == nullptr || std::ranges::none_of(table->columns, same)) continue;
            return Concat(u" (", table->name, u".", column->name, u")");
        }
        return {};
    }

    // A column makes a literal alone its kind. A number and a text have no order.
    static bool Comparable(TokenKind literal, const Operand& operand, bool alone, bool ordered) {
        if (operand.kind == Kind::Unknown || operand.kind == Kind::Null) return true;
        const bool number = literal == TokenKind::Number;
        if (number && operand.kind == Kind::Text && ordered) return false;
        if (alone && operand.column != nullptr) return true;
        const Kind own = literal == TokenKind::String ? Kind::Text : Kind::Date;
        return operand.kind == (number ? Kind::Number : own);
    }

    // A "(" that is neither of a call nor of a list.
    bool IsPlain(std::size_t open) const {
        return !IsName(At(open - 1)) && !At(open - 1).Is(u"in") && !At(open - 1).Is(u"values");
    }

    // What SQLite would compare as a row of values, each of them of any kind.
    bool IsTuple(std::size_t open) const { return IsPlain(open) && !At(open + 1).Is(u"select"); }

    // Without the "not" that may stand before an operator.
    std::size_t StepOverNot(std::size_t end) const { return At(end - 1).Is(u"not") ? end - 1 : end; }

    Comparison ComparisonOf(TokenRange literal, std::size_t parentheses) const {
        std::size_t operation = literal.begin - 1;
        if (At(operation).Is(u"not") && At(operation - 1).Is(u"is")) --operation;
        const Token& before = At(operation);
        if (IsComparison(before) && !IsAssignment(operation)) {
            return {operands_.SumBefore(operation), IsOrder(before)};
        }
        if (before.Is(u"between")) return {operands_.SumBefore(StepOverNot(operation)), true};
        if (before.Is(u"and")) {
            const std::size_t between = operands_.SumBefore(operation).begin - 1;
            if (At(between).Is(u"between")) return {operands_.SumBefore(StepOverNot(between)), true};
        }
        if ((before.Is(u"(") || before.Is(u",")) && open_.size() > parentheses) {
            const std::size_t in = (open_.rbegin() + static_cast<std::ptrdiff_t>(parentheses))->at - 1;
            if (At(in).Is(u"in")) return {operands_.SumBefore(StepOverNot(in)), false};
        }
        const std::size_t after = At(literal.end).Is(u"not") ? literal.end + 1 : literal.end;
        if (IsComparison(At(after)) || At(after).Is(u"between")) {
            return {operands_.SumAfter(after + 1), !IsComparison(At(after)) || IsOrder(At(after))};
        }
        if (At(after).Is(u"in")) {
            const bool select = At(after + 2).Is(u"select");
            return {select ? operands_.TermAfter(after + 1) : operands_.SumAfter(after + 2), false};
        }
        return {};
    }

    // column = ... after "set"
    bool IsAssignment(std::size_t equals) const {
        if (out_.kind != StatementKind::Update || !open_.empty()) return false;
        const Token& before = At(operands_.TermBefore(equals).begin - 1);
        return before.Is(u"set") || before.Is(u",");
    }

    struct Open {
        std::size_t at;
        std::string closing;  // what stands for its ")"
    };

    const SqlText& sql_;
    Statement statement_;
    Operands operands_;
    const std::vector<Token>& tokens_;
    std::vector<Open> open_;  // the parentheses
    Rewritten out_;
};

}  // namespace

TextView Parameter::Where(const SqlText& sql) const {
    const SqlText::Span& last = sql.values()[end_value - 1];
    const std::size_t begin = sql.values()[first_value].begin - before;
    return TextView(sql.text()).substr(begin, last.begin + last.length + after - begin);
}

std::optional<TextView> Parameter::WholeValue(const SqlText& sql) const {
    if (kind != TokenKind::String || end_value - first_value != 1 || before != 1 || after != 1) {
        return std::nullopt;
    }
    const SqlText::Span& value = sql.values()[first_value];
    return TextView(sql.text()).substr(value.begin, value.length);
}

// What a string stands for: values as they are, the program's own characters without their quoting.
Text Parameter::Words(const SqlText& sql) const {
    const TextView text = sql.text();
    Text words;
    std::size_t at = sql.values()[first_value].begin - before + 1;
    for (std::size_t i = first_value; i < end_value; ++i) {
        const SqlText::Span& value = sql.values()[i];
        words.append(WithoutDoubling(text.substr(at, value.begin - at)));
        words.append(text.substr(value.begin, value.length));
        at = value.begin + value.length;
    }
    return words.append(WithoutDoubling(text.substr(at, after - 1)));
}

Value Parameter::Read(const SqlText& sql) const {
    if (IsConstant()) return constant;
    Value value = kind == TokenKind::String ? Value(Words(sql)) : LiteralValue(kind, Where(sql));
    return column == nullptr ? value : ForComparison(*column, std::move(value));
}

Rewritten Rewrite(const SqlText& sql, const FindDefinition& find) {
    return Rewriter(sql, find).Do();
}

}  // namespace tav::jet
