#include "convert/find_text_value.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

#include "common/failure.h"
#include "common/guard.h"
#include "convert/characters.h"

namespace tav {
namespace {

constexpr std::string_view kHexEscape = "\\'";
constexpr std::size_t kHexEscapeSize = 4;
constexpr int kFirstDecodedByte = 0xB9;

// The escapes that vanish, in the order in which they are
// defined to be replaced: first \u1001 to \u1103, then these.
constexpr std::string_view kUnicodeEscape = "\\u1";
constexpr int kUnicodeEscapes = 103;
constexpr std::string_view kVanishing[] = {"\\u8470", "\\uc1", "\\u160", "\\'a0", "\\~"};
constexpr std::size_t kLongestEscape = 6;

constexpr std::string_view kHyphen = "\\_";
constexpr std::string_view kColour = "\\cf1 ";
constexpr std::string_view kFont = "\\f1 ";
// The name of a shape's property ends so; its value is no text.
constexpr std::string_view kShapeProperty = "sn";

// Positions from 1 to offsets and back.
std::size_t Offset(std::int32_t pos) {
    if (pos < 1) throw Failure(RunTimeError::InvalidProcedureCall);
    return static_cast<std::size_t>(pos) - 1;
}

std::int32_t Position(std::size_t offset) {
    if (offset >= std::numeric_limits<std::int32_t>::max()) throw Failure(RunTimeError::Overflow);
    return static_cast<std::int32_t>(offset + 1);
}

// -1 for what is no lower-case hexadecimal digit.
int LowerHexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The byte of the hex escape that begins the text; -1 when there is none, or it is not one of those decoded.
int DecodedByte(std::string_view text) {
    if (text.size() < kHexEscapeSize || !text.starts_with(kHexEscape)) return -1;
    const int high = LowerHexDigit(text[2]);
    const int low = LowerHexDigit(text[3]);
    if (high < 0 || low < 0 || high * 16 + low < kFirstDecodedByte) return -1;
    return high * 16 + low;
}

// Which replacement removes this escape, counted from 1; 0 for text that is none.
int RemovalOf(std::string_view escape) {
    if (escape.size() == kLongestEscape && escape.starts_with(kUnicodeEscape)) {
        int number = 0;
        for (const char c : escape.substr(kUnicodeEscape.size())) {
            if (c < '0' || c > '9') return 0;
            number = number * 10 + (c - '0');
        }
        return number <= kUnicodeEscapes ? number : 0;
    }
    const auto* const found = std::find(std::begin(kVanishing), std::end(kVanishing), escape);
    if (found == std::end(kVanishing)) return 0;
    return kUnicodeEscapes + 1 + static_cast<int>(found - std::begin(kVanishing));
}

// The segment with its hex escapes decoded and the vanishing escapes removed, in one pass with the result of
// one replacement after the other.
//
// A removal may join what stood around it to a new escape, which is removed in its turn only if its own
// replacement comes later. So each character kept remembers the latest removal between it and the one before,
// and an escape goes only if its replacement comes after all removals inside of it. No escape is the
// beginning of another, and each has its only backslash in front, so none can take another's characters.
class Unescaped {
 public:
    explicit Unescaped(std::string_view segment) {
        kept_.reserve(segment.size());
        joined_at_.reserve(segment.size());
        while (!segment.empty()) {
            const int byte = DecodedByte(segment);
            Keep(byte < 0 ? segment[0] : static_cast<char>(byte));
            segment.remove_prefix(byte < 0 ? 1 : kHexEscapeSize);
        }
    }

    std::string Take() { return std::move(kept_); }

 private:
    void Keep(char c) {
        kept_ += c;
        joined_at_.push_back(gap_);
        gap_ = 0;
        const std::size_t nearby = kept_.size() - std::min(kept_.size(), kLongestEscape);
        const std::size_t escape = std::string_view(kept_).substr(nearby).rfind('\\');
        if (escape != kept_.npos) RemoveFrom(nearby + escape);
    }

    // Removes what has been kept from there on, if it is an escape that vanishes.
    void RemoveFrom(std::size_t escape) {
        const int removal = RemovalOf(std::string_view(kept_).substr(escape));
        const auto first = joined_at_.begin() + static_cast<std::ptrdiff_t>(escape);
        if (removal == 0 || *std::max_element(first + 1, joined_at_.end()) >= removal) return;
        gap_ = std::max(*first, removal);
        kept_.resize(escape);
        joined_at_.resize(escape);
    }

    std::string kept_;
    std::vector<int> joined_at_;  // for each character kept
    int gap_ = 0;                 // the latest removal after the last one
};

std::string WithoutLineEnds(std::string_view text) {
    std::string out;
    for (std::size_t at; (at = text.find(kLineEnd)) != text.npos;) {
        out.append(text.substr(0, at));
        text.remove_prefix(at + kLineEnd.size());
    }
    return out.append(text);
}

// GetKeyValue for a word with its backslash.
std::string_view ValueOfWord(std::int32_t& pos, std::string_view text, std::string_view word) {
    const std::size_t found = text.find(word, Offset(pos));
    if (found == text.npos) {
        pos = 0;
        return {};
    }
    const std::size_t begin = found + word.size();
    const std::size_t end = text.find('\\', begin);
    pos = Position(end == text.npos ? begin : end);
    return text.substr(begin, end == text.npos ? end : end - begin);
}

// What follows the space that ends the last control word.
std::string_view TextBehindLastWord(std::string_view segment) {
    const std::size_t word = segment.rfind('\\');
    if (word == segment.npos) throw Failure(RunTimeError::InvalidProcedureCall);
    const std::size_t blank = segment.find(' ', word);
    if (blank == segment.npos || segment.substr(0, blank).ends_with(kShapeProperty)) return {};
    return segment.substr(blank + 1);
}

std::string TextOfSegment(std::string_view raw) {
    const std::string segment = Unescaped(raw).Take();
    const std::string_view word = segment.find(kColour) == segment.npos ? kFont : kColour;
    std::string text = segment.find(kHyphen) == segment.npos ? "" : "-";
    for (std::int32_t pos = 1; pos != 0;) text += ValueOfWord(pos, segment, word);
    if (text.empty()) text = TextBehindLastWord(segment);
    return WithoutLineEnds(text);
}

// One group after the other; `on_failure(const Failure&)` is told of each one that fails.
template <class OnFailure>
std::string TextOfGroups(std::int32_t& pos, std::string_view text, OnFailure on_failure) {
    std::string value;
    bool more = pos != 0;
    while (more) {
        more = false;
        GuardedBy(
            [&] {
                const std::size_t begin = Offset(pos);
                const std::size_t end = text.find('}', begin);
                if (end == text.npos) {
                    pos = 0;
                    return;
                }
                pos = Position(end + 1);
                more = text.substr(end + 1).starts_with('{');
                value += TextOfSegment(text.substr(begin, end - begin));
            },
            on_failure);
    }
    return value;
}

}  // namespace

std::string FindTextValue(std::int32_t& pos, std::string_view text) {
    return TextOfGroups(
        pos, text, [](const Failure& failure) { ShowFailure(u"Ошибка в функции FindTextValue", failure); });
}

std::string FindTextValueQuietly(std::int32_t& pos, std::string_view text) {
    return TextOfGroups(pos, text, [](const Failure&) {});
}

std::string GetKeyValue(std::int32_t& pos, std::string_view text, std::string_view key) {
    std::string value;
    Guarded(u"Ошибка в функции getbase", [&] { value = ValueOfWord(pos, text, "\\" + std::string(key)); });
    return value;
}

}  // namespace tav
