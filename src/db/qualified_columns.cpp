#include "db/qualified_columns.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "common/concat.h"
#include "common/failure.h"
#include "sql/sql_token.h"

namespace tav {
namespace {

using jet::Token;
using jet::TokenKind;

constexpr TextView kSelectName = u"q";

class Qualifier {
 public:
    explicit Qualifier(const Text& sql) : sql_(sql), source_(sql), tokens_(jet::Tokenize(source_)) {}

    Text Qualified() {
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            if (tokens_[i].Is(u"select")) Select(i);
        }
        std::ranges::sort(found_, {}, &Insertion::at);
        Text text;
        std::size_t at = 0;
        for (const Insertion& insertion : found_) {
            text.append(sql_, at, insertion.at - at).append(insertion.text);
            at = insertion.at;
        }
        return text.append(sql_, at);
    }

 private:
    struct Insertion {
        std::size_t at = 0;
        Text text;
    };
    // What a select reads from: a table, or a select that has no name yet.
    struct Source {
        TextView name;
        std::optional<std::size_t> unnamed_end = {};
    };

    bool Is(std::size_t at, TextView word) const { return at < tokens_.size() && tokens_[at].Is(word); }
    bool IsWord(std::size_t at) const { return at < tokens_.size() && tokens_[at].kind == TokenKind::Word; }

    // The tokens of a select itself, without those of the selects inside it.
    std::vector<std::size_t> OwnTokens(std::size_t select) const {
        std::vector<std::size_t> own;
        int depth = 0;
        int inner = -1;  // the depth of a select in parentheses
        for (std::size_t i = select + 1; i < tokens_.size() && depth >= 0; ++i) {
            if (Is(i, u"(")) {
                ++depth;
                if (inner < 0 && Is(i + 1, u"select")) inner = depth;
            } else if (Is(i, u")")) {
                if (depth-- == inner) inner = -1;
            } else if (inner < 0) {
                own.push_back(i);
            }
        }
        return own;
    }

    std::size_t AfterParentheses(std::size_t open) const {
        int depth = 0;
        for (std::size_t i = open; i < tokens_.size(); ++i) {
            if (Is(i, u"(")) ++depth;
            if (Is(i, u")") && --depth == 0) return i + 1;
        }
        return tokens_.size();
    }

    // What stands after "from" alone; none when there are several tables, or selects that have names.
    std::optional<Source> OnlySource(std::size_t from) const {
        constexpr TextView kAfter[] = {u"where", u"group", u"order", u")"};
        const bool select = Is(from + 1, u"(") && Is(from + 2, u"select");
        if (!select && !IsWord(from + 1)) return std::nullopt;
        const std::size_t next = select ? AfterParentheses(from + 1) : from + 2;
        const bool alone = next == tokens_.size() ||
                           std::ranges::any_of(kAfter, [&](TextView word) { return Is(next, word); });
        if (!alone) return std::nullopt;
        return select ? Source{kSelectName, tokens_[next - 1].begin + 1} : Source{tokens_[from + 1].text};
    }

    void Select(std::size_t select) {
        const std::vector<std::size_t> own = OwnTokens(select);
        const auto from = std::ranges::find_if(own, [&](std::size_t i) { return Is(i, u"from"); });
        const auto source = from == own.end() ? std::nullopt : OnlySource(*from);
        if (!source) return;
        std::vector<TextView> aliases;
        for (const std::size_t i : own) {
            if (Is(i, u"as") && IsWord(i + 1)) aliases.push_back(tokens_[i + 1].text);
        }
        const std::size_t found_before = found_.size();
        for (const std::size_t i : own) {
            const bool column =
                IsWord(i) && !Is(i - 1, u"as") && !Is(i - 1, u".") && !Is(i + 1, u".") && !Is(i + 1, u"(");
            const auto same = [&](TextView alias) { return EqualNoCase(alias, tokens_[i].text); };
            if (column && std::ranges::any_of(aliases, same))
                found_.push_back({tokens_[i].begin, Concat(source->name, u".")});
        }
        if (source->unnamed_end && found_.size() > found_before)
            found_.push_back({*source->unnamed_end, Concat(u" as ", source->name)});
    }

    const Text& sql_;
    const SqlText source_;  // which the tokens point into
    const std::vector<Token> tokens_;
    std::vector<Insertion> found_;
};

}  // namespace

Text QualifiedColumns(const Text& sql) {
    try {
        return Qualifier(sql).Qualified();
    } catch (const Failure&) {  // the provider has to say what it makes of it
        return sql;
    }
}

}  // namespace tav
