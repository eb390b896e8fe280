// The words of one Jet SQL statement.
//
// Strings stand between apostrophes (an apostrophe inside is doubled), dates between "#" signs as
// month/day/year, names that need it between brackets. Comments, double-quoted names and every sign the
// dialect does not need are refused: whatever they might mean, no procedure writes them.
#pragma once

#include <vector>

#include "common/date.h"
#include "common/text.h"
#include "sql/sql_text.h"

namespace tav::jet {

enum class TokenKind { Word, Name, Number, String, Date, Symbol };

struct Token {
    TokenKind kind = TokenKind::Symbol;
    // As it stands; of a Name without its brackets, of a literal with its apostrophes or "#" signs.
    TextView text;
    std::size_t begin = 0;  // where it stands in the statement
    // Values of the SqlText that stand in this token: [first_value, end_value).
    std::size_t first_value = 0;
    std::size_t end_value = 0;

    bool HasValues() const { return first_value != end_value; }
    bool IsLiteral() const {
        return kind == TokenKind::Number || kind == TokenKind::String || kind == TokenKind::Date;
    }
    // A word or symbol, letter case ignored.
    bool Is(TextView word) const {
        return (kind == TokenKind::Word || kind == TokenKind::Symbol) && EqualNoCase(text, word);
    }
};

// The statement without its trailing ";". The tokens point into the text. A text that is no single statement
// in this alphabet is a Failure with the engine's usual words.
std::vector<Token> Tokenize(const SqlText& sql);

// What stands between the apostrophes of a string that the program wrote: doubled ones single.
Text WithoutDoubling(TextView inside);

// #month/day/year#; what is no date is a Failure.
Date ReadDateLiteral(TextView token);

}  // namespace tav::jet
