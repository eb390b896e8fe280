#include "db/qualified_columns.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "common/failure.h"
#include "sql/sql_token.h"

namespace tav {
namespace {

using jet::Token;
using jet::TokenKind;

class Qualifier {
 public:
    explicit Qualifier(const Text& sql) : sql_(sql), source_(sql), tokens_(jet::Tokenize(source_)) {}

    Text Qualified() {
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            if (tokens_[i].Is(u"select")) Select(i);
        }
        std::ranges::sort(found_, {}, &Column::begin);
        Text text;
        std::size_t at = 0;
        for (const Column& column : found_) {
            text.append(sql_, at, column.begin - at).append(column.table).append(u".");
            at = column.begin;
        }
        return text.append(sql_, at);
    }

 private:
    struct Column {
        std::size_t begin = 0;
        TextView table;
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

    // The name of the only table after "from"; none when there are several, or selects.
    std::optional<TextView> OnlyTable(std::size_t from) const {
        constexpr TextView kAfter[] = {u"where", u"group", u"order", u")"};
        if (!IsWord(from + 1)) return std::nullopt;
        const bool alone = from + 2 == tokens_.size() ||
                           std::ranges::any_of(kAfter, [&](TextView word) { return Is(from + 2, word); });
        return alone ? std::optional(tokens_[from + 1].text) : std::nullopt;
    }

    void Select(std::size_t select) {
        const std::vector<std::size_t> own = OwnTokens(select);
        const auto from = std::ranges::find_if(own, [&](std::size_t i) { return Is(i, u"from"); });
        const auto table = from == own.end() ? std::nullopt : OnlyTable(*from);
        if (!table) return;
        std::vector<TextView> aliases;
        for (const std::size_t i : own) {
            if (Is(i, u"as") && IsWord(i + 1)) aliases.push_back(tokens_[i + 1].text);
        }
        for (const std::size_t i : own) {
            const bool column =
                IsWord(i) && !Is(i - 1, u"as") && !Is(i - 1, u".") && !Is(i + 1, u".") && !Is(i + 1, u"(");
            const auto same = [&](TextView alias) { return EqualNoCase(alias, tokens_[i].text); };
            if (column && std::ranges::any_of(aliases, same)) found_.push_back({tokens_[i].begin, *table});
        }
    }

    const Text& sql_;
    const SqlText source_;  // which the tokens point into
    const std::vector<Token> tokens_;
    std::vector<Column> found_;
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
