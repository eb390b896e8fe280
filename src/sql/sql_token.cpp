#include "sql/sql_token.h"

#include <array>
#include <optional>

#include "common/concat.h"
#include "common/failure.h"
#include "common/get_next.h"

namespace tav::jet {
namespace {

constexpr std::size_t kLongestStatement = 1 << 20;
constexpr TextView kSymbols = u"(),.*+-/=<>";

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsWordStart(char16_t c) {
    return c == u'_' || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
           (c > 0xA0 && UpperChar(c) != c) || (c > 0xA0 && LowerChar(c) != c);
}
bool IsWordPart(char16_t c) {
    return IsWordStart(c) || IsDigit(c);
}
bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

[[noreturn]] void RefuseSign(TextView text, std::size_t at) {
    throw Failure(Concat(u"Syntax error in query expression '", text.substr(at, 40), u"'."));
}

class Tokenizer {
 public:
    explicit Tokenizer(const SqlText& sql) : text_(sql.text()), values_(sql.values()) {}

    std::vector<Token> All() {
        for (SkipBlanks(); at_ < text_.size(); SkipBlanks()) {
            if (text_[at_] == u';') {
                EndOfStatement();
                break;
            }
            Add();
        }
        return std::move(tokens_);
    }

 private:
    void SkipBlanks() {
        while (at_ < text_.size() && !AtValue() && IsBlank(text_[at_])) ++at_;
    }
    bool AtValue() const { return value_ < values_.size() && values_[value_].begin == at_; }
    char16_t Peek(std::size_t ahead) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : u'\0'; }

    void EndOfStatement() {
        ++at_;
        SkipBlanks();
        if (at_ < text_.size()) throw Failure(u"Characters found after end of SQL statement.");
    }

    void Add() {
        Token token;
        token.begin = at_;
        token.first_value = token.end_value = value_;
        const char16_t c = text_[at_];
        if (AtValue()) {
            BareValue(token);
        } else if (c == u'\'') {
            String(token);
        } else if (c == u'#') {
            DateLiteral(token);
        } else if (c == u'[') {
            Bracketed(token);
        } else if (IsDigit(c)) {
            Number(token);
        } else if (IsWordStart(c)) {
            token.kind = TokenKind::Word;
            Take(token, [](char16_t part) { return IsWordPart(part); });
        } else {
            Symbol(token);
        }
        tokens_.push_back(token);
    }

    template <class Belongs>
    void Take(Token& token, Belongs belongs) {
        while (at_ < text_.size() && !AtValue() && belongs(text_[at_])) ++at_;
        if (AtValue()) RefuseSign(text_, token.begin);  // a value may not continue a word or number
        token.text = text_.substr(token.begin, at_ - token.begin);
    }

    void BareValue(Token& token) {
        const SqlText::Span& span = values_[value_];
        SkipValue(token);
        token.kind = TokenKind::Number;
        token.text = text_.substr(token.begin, span.length);
        const TextView digits = token.text.substr(token.text.starts_with(u'-') ? 1 : 0);
        const bool number = !digits.empty() && digits.find_first_not_of(u"0123456789") == digits.npos;
        if (span.quoted || !number || AtValue() || IsWordPart(Peek(0))) RefuseSign(text_, token.begin);
    }

    void String(Token& token) {
        token.kind = TokenKind::String;
        for (++at_; at_ < text_.size();) {
            if (AtValue()) {
                SkipValue(token);
                continue;
            }
            if (text_[at_++] != u'\'') continue;
            const bool doubled = !AtValue() && Peek(0) == u'\'';
            if (!doubled) {
                token.text = text_.substr(token.begin, at_ - token.begin);
                return;
            }
            ++at_;
        }
        throw Failure(
            Concat(u"Syntax error in string in query expression '", text_.substr(token.begin, 40), u"'."));
    }

    void DateLiteral(Token& token) {
        token.kind = TokenKind::Date;
        for (++at_; at_ < text_.size(); ++at_) {
            while (AtValue()) SkipValue(token);
            if (Peek(0) == u'#') break;
        }
        if (at_ >= text_.size()) RefuseSign(text_, token.begin);
        ++at_;
        token.text = text_.substr(token.begin, at_ - token.begin);
        if (!token.HasValues()) ReadDateLiteral(token.text);
    }

    void SkipValue(Token& token) {
        at_ += values_[value_].length;
        token.end_value = ++value_;
    }

    void Bracketed(Token& token) {
        token.kind = TokenKind::Name;
        const std::size_t end = text_.find(u']', at_);
        if (end == text_.npos || end == at_ + 1) RefuseSign(text_, at_);
        token.text = text_.substr(at_ + 1, end - at_ - 1);
        if (value_ < values_.size() && values_[value_].begin <= end) RefuseSign(text_, at_);
        at_ = end + 1;
    }

    void Number(Token& token) {
        token.kind = TokenKind::Number;
        bool point = false;
        Take(token, [&](char16_t c) {
            if (c == u'.' && !point) return point = true;
            return IsDigit(c);
        });
        if (IsWordPart(Peek(0))) RefuseSign(text_, token.begin);
    }

    void Symbol(Token& token) {
        const TextView two = text_.substr(at_, 2);
        if (kSymbols.find(text_[at_]) == kSymbols.npos || two == u"--" || two == u"/*")
            RefuseSign(text_, at_);
        at_ += two == u"<=" || two == u">=" || two == u"<>" ? 2 : 1;
        token.text = text_.substr(token.begin, at_ - token.begin);
    }

    TextView text_;
    const std::vector<SqlText::Span>& values_;
    std::size_t at_ = 0;
    std::size_t value_ = 0;
    std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Tokenize(const SqlText& sql) {
    if (sql.text().size() > kLongestStatement) throw Failure(u"Query is too complex.");
    return Tokenizer(sql).All();
}

Text WithoutDoubling(TextView inside) {
    return ReplaceAll(inside, u"''", u"'");
}

Date ReadDateLiteral(TextView token) {
    std::array<int, 3> fields{};
    TextView rest = token.substr(1);
    bool good = token.size() <= 12;
    for (std::size_t field = 0; field < 3; ++field) {
        const TextView digits = GetNext(rest, field == 2 ? u"#" : u"/");
        good = good && !digits.empty() && digits.size() <= 4;
        for (const char16_t c : digits) {
            good = good && IsDigit(c);
            if (good) fields[field] = fields[field] * 10 + (c - u'0');
        }
    }
    const std::optional<Date> date = DateFromCivil({fields[2], fields[0], fields[1]});
    if (!good || !rest.empty() || !date) {
        throw Failure(Concat(u"Syntax error in date in query expression '", token, u"'."));
    }
    return *date;
}

}  // namespace tav::jet
