#include "convert/catalogue_markup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

#include "common/windows1251.h"
#include "convert/characters.h"

namespace tav {
namespace {

// The most frequent one first.
constexpr std::array<std::string_view, 11> kNames = {"row",  "head", "body", "part",   "file", "name",
                                                     "perb", "pere", "item", "actual", "all"};
// h01, p01 and p0001: a letter and so many digits.
constexpr std::size_t kFewestDigits = 2;
constexpr std::size_t kMostDigits = 4;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view FromBlank(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

// The length of the own name at the beginning of the text, 0 when there is none.
std::size_t NameLength(std::string_view text) {
    std::size_t length = 0;
    if (text.starts_with('h') || text.starts_with('p')) {
        while (length + 1 < text.size() && length < kMostDigits && IsDigit(text[length + 1])) ++length;
        if (length >= kFewestDigits) return length + 1;
    }
    for (const std::string_view name : kNames) {
        if (text.starts_with(name.front()) && text.starts_with(name)) return name.size();
    }
    return 0;
}

// What may stand between an opening tag's name and its end: ` type="..."`, with either quotes.
bool IsTypeOrNothing(std::string_view text) {
    constexpr std::string_view kType = "type";
    std::string_view rest = FromBlank(text);
    if (rest.empty()) return true;
    if (rest.size() == text.size() || !rest.starts_with(kType)) return false;
    rest = FromBlank(rest.substr(kType.size()));
    if (!rest.starts_with('=')) return false;
    rest = FromBlank(rest.substr(1));
    if (!rest.starts_with('"') && !rest.starts_with('\'')) return false;
    const std::size_t closing = rest.find(rest.front(), 1);
    if (closing == rest.npos) return false;
    const auto is_text = [](char c) { return c != '<' && c != '&' && static_cast<unsigned char>(c) >= ' '; };
    if (!std::ranges::all_of(rest.substr(0, closing), is_text)) return false;
    return FromBlank(rest.substr(closing + 1)).empty();
}

struct Entity {
    std::string_view name;
    char16_t character;
};
constexpr std::array<Entity, 5> kEntities = {
    {{"amp;", u'&'}, {"lt;", u'<'}, {"gt;", u'>'}, {"quot;", u'"'}, {"apos;", u'\''}}};

// A reference at the beginning of a text.
struct Reference {
    std::size_t length = 0;  // 0: there is none
    std::uint32_t code = 0;
};

bool IsXmlCharacter(std::uint32_t code) {
    if (code < 0x20) return code == '\t' || code == '\r' || code == '\n';
    return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

// "&#1040;" or "&#x410;".
Reference NumberAt(std::string_view text) {
    const bool hex = text.substr(2).starts_with('x');
    const char* const begin = text.data() + (hex ? 3 : 2);
    const char* const end = text.data() + text.size();
    std::uint32_t code = 0;
    const auto [after, error] = std::from_chars(begin, end, code, hex ? 16 : 10);
    if (error != std::errc() || after == end || *after != ';' || !IsXmlCharacter(code)) return {};
    return {static_cast<std::size_t>(after + 1 - text.data()), code};
}

Reference ReferenceAt(std::string_view text) {
    if (text.starts_with("&#")) return NumberAt(text);
    for (const Entity& entity : kEntities) {
        if (text.substr(1).starts_with(entity.name)) return {1 + entity.name.size(), entity.character};
    }
    return {};
}

void AppendCharacter(Text& text, std::uint32_t code) {
    if (code > 0xFFFF) {
        text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        code = 0xDC00 + (code & 0x3FF);
    }
    text += static_cast<char16_t>(code);
}

// The characters of the bytes; those of "&" and "\r" depend on what comes after them.
const std::array<char16_t, 256>& Characters() {
    static const auto characters = [] {
        std::array<char16_t, 256> all{};
        for (unsigned byte = 0; byte < all.size(); ++byte)
            all[byte] = IsXmlCharacter(byte) ? FromWindows1251(static_cast<unsigned char>(byte)) : u'?';
        return all;
    }();
    return characters;
}

}  // namespace

MarkupTag TagAt(std::string_view text, std::size_t at) {
    MarkupTag tag;
    tag.begin = at;
    if (at >= text.size() || text[at] != '<') return tag;
    tag.closes = text.substr(at + 1).starts_with('/');
    const std::size_t name = at + (tag.closes ? 2 : 1);
    const std::size_t length = NameLength(text.substr(name));
    const std::size_t after = name + length;
    if (length == 0 || after >= text.size()) return tag;
    std::size_t end = after;
    if (text[end] != '>') {
        end = text.find_first_of("<>", end);
        if (end == text.npos || text[end] != '>') return tag;
        std::string_view inside = text.substr(after, end - after);
        tag.is_whole = !tag.closes && inside.ends_with('/');
        if (tag.is_whole) inside.remove_suffix(1);
        if (tag.closes ? !FromBlank(inside).empty() : !IsTypeOrNothing(inside)) return tag;
    }
    tag.name = text.substr(name, length);
    tag.end = end + 1;
    return tag;
}

MarkupTag NextTag(std::string_view text, std::size_t at) {
    while ((at = text.find('<', at)) != text.npos) {
        const MarkupTag tag = TagAt(text, at);
        if (!tag.name.empty()) return tag;
        ++at;
    }
    return {};
}

Text TextBetweenTags(std::string_view markup) {
    const std::array<char16_t, 256>& characters = Characters();
    Text text(markup.size(), u'\0');
    std::size_t plain = 0;  // most texts have nothing else
    for (; plain < markup.size() && markup[plain] != '&' && markup[plain] != '\r'; ++plain)
        text[plain] = characters[static_cast<unsigned char>(markup[plain])];
    text.resize(plain);
    for (std::size_t at = plain; at < markup.size(); ++at) {
        const char c = markup[at];
        if (c == '&') {
            if (const Reference reference = ReferenceAt(markup.substr(at)); reference.length > 0) {
                AppendCharacter(text, reference.code);
                at += reference.length - 1;
                continue;
            }
        } else if (c == '\r') {
            if (!markup.substr(at + 1).starts_with('\n')) text += u'\n';
            continue;
        }
        text += characters[static_cast<unsigned char>(c)];
    }
    return text;
}

}  // namespace tav
