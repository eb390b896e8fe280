#include "common/text.h"

#include <array>

namespace tav {
namespace {

constexpr char16_t kEscapedByte = 0xDC00;

// Length of the UTF-8 sequence that starts at `i` and is valid, 0 when the byte there starts none.
std::size_t SequenceLength(std::string_view s, std::size_t i) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(s[at]); };
    const auto follows = [&](std::size_t at, unsigned low, unsigned high) {
        return at < s.size() && byte(at) >= low && byte(at) <= high;
    };
    const unsigned lead = byte(i);
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return follows(i + 1, 0x80, 0xBF) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return follows(i + 1, low, high) && follows(i + 2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return follows(i + 1, low, high) && follows(i + 2, 0x80, 0xBF) && follows(i + 3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | c >> 6);
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | c >> 12);
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | c >> 18);
        out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

constexpr char16_t ComputedUpper(char16_t c) {
    if (c >= u'a' && c <= u'z') return static_cast<char16_t>(c - 32);
    if (c < 0xB5) return c;
    if ((c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x430 && c <= 0x44F))
        return static_cast<char16_t>(c - 32);
    if (c == 0xFF) return 0x178;
    if ((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) {
        return c == 0x131 ? u'I' : static_cast<char16_t>(c & ~1);
    }
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E))
        return static_cast<char16_t>((c & 1) != 0 ? c : c - 1);
    if (c >= 0x3B1 && c <= 0x3CB && c != 0x3C2) return static_cast<char16_t>(c - 32);
    if (c >= 0x450 && c <= 0x45F) return static_cast<char16_t>(c - 80);
    if ((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F)) {
        return static_cast<char16_t>(c & ~1);
    }
    return c;
}

// Everything that has a case at all lies below U+0530.
constexpr std::size_t kCased = 0x530;

constexpr auto kUpper = [] {
    std::array<char16_t, kCased> table{};
    for (std::size_t c = 0; c < kCased; ++c) table[c] = ComputedUpper(static_cast<char16_t>(c));
    table[0x138] = 0x138;
    return table;
}();

constexpr auto kLower = [] {
    std::array<char16_t, kCased> table{};
    for (std::size_t c = 0; c < kCased; ++c) table[c] = static_cast<char16_t>(c);
    for (std::size_t c = kCased; c-- > 0;) {
        if (kUpper[c] != c && c != 0x131) table[kUpper[c]] = static_cast<char16_t>(c);
    }
    return table;
}();

template <class Convert>
Text Mapped(TextView text, Convert convert) {
    Text out(text);
    for (char16_t& c : out) c = convert(c);
    return out;
}

}  // namespace

Text FromUtf8(std::string_view bytes) {
    Text out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto byte = [&](std::size_t k) {
            return static_cast<char32_t>(static_cast<unsigned char>(bytes[i + k]));
        };
        const std::size_t length = SequenceLength(bytes, i);
        switch (length) {
            case 0:
                out += static_cast<char16_t>(kEscapedByte + byte(0));
                break;
            case 1:
                out += static_cast<char16_t>(byte(0));
                break;
            case 2:
                out += static_cast<char16_t>((byte(0) & 0x1F) << 6 | (byte(1) & 0x3F));
                break;
            case 3:
                out +=
                    static_cast<char16_t>((byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
                break;
            default: {
                const char32_t c = ((byte(0) & 7) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 |
                                    (byte(3) & 0x3F)) -
                                   0x10000;
                out += static_cast<char16_t>(0xD800 | c >> 10);
                out += static_cast<char16_t>(0xDC00 | (c & 0x3FF));
            }
        }
        i += length == 0 ? 1 : length;
    }
    return out;
}

std::string ToUtf8(TextView text) {
    std::string out;
    out.reserve(text.size() + text.size() / 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const bool pair = c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                          text[i + 1] <= 0xDFFF;
        if (pair) {
            AppendUtf8(out, 0x10000 + (static_cast<char32_t>(c & 0x3FF) << 10 | (text[i + 1] & 0x3FFU)));
            ++i;
        } else if (c >= kEscapedByte + 0x80 && c <= kEscapedByte + 0xFF) {
            out += static_cast<char>(c - kEscapedByte);
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            AppendUtf8(out, 0xFFFD);
        } else {
            AppendUtf8(out, c);
        }
    }
    return out;
}

char16_t UpperChar(char16_t c) {
    return c < kCased ? kUpper[c] : c;
}
char16_t LowerChar(char16_t c) {
    return c < kCased ? kLower[c] : c;
}
Text UpperCase(TextView text) {
    return Mapped(text, UpperChar);
}
Text LowerCase(TextView text) {
    return Mapped(text, LowerChar);
}

bool EqualNoCase(TextView a, TextView b) {
    return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

int CompareNoCase(TextView a, TextView b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const char16_t x = UpperChar(a[i]);
        const char16_t y = UpperChar(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

Text ReplaceAll(TextView text, TextView what, TextView with) {
    Text out;
    out.reserve(text.size());
    while (!what.empty()) {
        const std::size_t at = text.find(what);
        if (at == TextView::npos) break;
        out.append(text.substr(0, at)).append(with);
        text.remove_prefix(at + what.size());
    }
    return out.append(text);
}

TextView Trim(TextView text) {
    const std::size_t first = text.find_first_not_of(u' ');
    if (first == TextView::npos) return {};
    return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

TextView Right(TextView text, std::size_t count) {
    return text.substr(text.size() - std::min(count, text.size()));
}

Text Digits(long long number, int width) {
    std::string digits = std::to_string(number < 0 ? -number : number);
    if (digits.size() < static_cast<std::size_t>(width))
        digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
    if (number < 0) digits.insert(0, 1, '-');
    return Text(digits.begin(), digits.end());
}

}  // namespace tav
