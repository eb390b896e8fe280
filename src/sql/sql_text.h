// An SQL text as the procedures concatenate it, which remembers where the values in it stand.
//
//     SqlText sql(u"delete from tav_operations_header where h1='");
//     sql.Value(inn).Fixed(u"' and h2='").Value(kpp).Fixed(u"';");
//
// Values are put in as they are: an apostrophe in a value is not doubled. They are data all the same: the
// native engine takes them from their places, whatever characters they have; an engine that reads the text
// alone gets it Doubled().
#pragma once

#include <cstdint>
#include <vector>

#include "common/text.h"

namespace tav {

class SqlText {
 public:
    struct Span {
        std::size_t begin = 0;
        std::size_t length = 0;
        bool quoted = true;  // stands between apostrophes; else it is a bare whole number or Null
    };

    SqlText() = default;
    explicit SqlText(TextView fixed) : text_(fixed) {}

    // The program's own words.
    SqlText& Fixed(TextView text) {
        text_ += text;
        return *this;
    }
    // A value that stands between the apostrophes before and after it.
    SqlText& Value(TextView value) {
        values_.push_back({text_.size(), value.size(), true});
        text_ += value;
        return *this;
    }
    // A whole number without apostrophes.
    SqlText& Number(std::int64_t number) {
        const Text digits = Digits(number);
        values_.push_back({text_.size(), digits.size(), false});
        text_ += digits;
        return *this;
    }
    // Another text with its values, after this one.
    SqlText& Append(const SqlText& other) {
        for (Span span : other.values_) {
            span.begin += text_.size();
            values_.push_back(span);
        }
        text_ += other.text_;
        return *this;
    }

    const Text& text() const { return text_; }
    // The text with the apostrophes of its values doubled.
    Text Doubled() const {
        Text doubled;
        std::size_t at = 0;
        for (const Span& value : values_) {
            doubled.append(text_, at, value.begin - at);
            doubled.append(ReplaceAll(TextView(text_).substr(value.begin, value.length), u"'", u"''"));
            at = value.begin + value.length;
        }
        return doubled.append(text_, at);
    }
    const std::vector<Span>& values() const { return values_; }

 private:
    Text text_;
    std::vector<Span> values_;
};

}  // namespace tav
