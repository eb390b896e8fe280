#include "convert/catalogue_markup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

#include "common/windows1251.h"

namespace tav {
namespace {

constexpr std::array<std::string_view, 11> kNames = {"all",  "actual", "item", "file", "name", "part",
                                                     "head", "body",   "row",  "perb", "pere"};
// h01, p01 and p0001: a letter and so many digits.
constexpr std::size_t kFewestDigits = 2;
constexpr std::size_t kMostDigits = 4;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

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
    char character;
};
constexpr std::array<Entity, 5> kEntities = {
    {{"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}}};

// A reference at the beginning of a text.
struct Reference {
    std::size_t length = 0;  // 0: there is none
    char byte = 0;
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
    const auto [behind, error] = std::from_chars(begin, end, code, hex ? 16 : 10);
    if (error != std::errc() || behind == end || *behind != ';' || !IsXmlCharacter(code)) return {};
    const auto character = static_cast<char16_t>(code > 0xFFFF ? u'?' : code);
    return {static_cast<std::size_t>(behind + 1 - text.data()), ToWindows1251(character)};
}

Reference ReferenceAt(std::string_view text) {
    if (text.starts_with("&#")) return NumberAt(text);
    for (const Entity& entity : kEntities) {
        if (text.substr(1).starts_with(entity.name)) return {1 + entity.name.size(), entity.character};
    }
    return {};
}

// The text between two tags as XML.
void AppendText(std::string& xml, std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '<') {
            xml.append("&lt;");
        } else if (c == '>') {
            xml.append("&gt;");
        } else if (c == '&') {
            const Reference reference = ReferenceAt(text.substr(at));
            if (reference.length == 0) {
                xml.append("&amp;");
            } else {
                xml.append(text, at, reference.length);
                at += reference.length - 1;
            }
        } else {
            xml.push_back(IsXmlCharacter(static_cast<unsigned char>(c)) ? c : '?');
        }
    }
}

}  // namespace

MarkupTag TagAt(std::string_view text, std::size_t at) {
    MarkupTag tag;
    tag.begin = at;
    if (at >= text.size() || text[at] != '<') return tag;
    tag.closes = text.substr(at + 1).starts_with('/');
    const std::size_t name = at + (tag.closes ? 2 : 1);
    const std::size_t length = NameLength(text.substr(name));
    const std::size_t behind = name + length;
    if (length == 0 || behind >= text.size()) return tag;
    std::size_t end = behind;
    if (text[end] != '>') {
        end = text.find_first_of("<>", end);
        if (end == text.npos || text[end] != '>') return tag;
        std::string_view inside = text.substr(behind, end - behind);
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

std::string AsXml(std::string_view markup) {
    std::string xml;
    xml.reserve(markup.size() + markup.size() / 16);
    std::size_t at = 0;
    for (MarkupTag tag = NextTag(markup, 0); !tag.name.empty(); tag = NextTag(markup, at)) {
        AppendText(xml, markup.substr(at, tag.begin - at));
        xml.append(markup, tag.begin, tag.end - tag.begin);
        at = tag.end;
    }
    AppendText(xml, markup.substr(at));
    return xml;
}

std::string WithoutEntities(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Reference reference = text[at] == '&' ? ReferenceAt(text.substr(at)) : Reference{};
        bytes.push_back(reference.length == 0 ? text[at] : reference.byte);
        at += std::max<std::size_t>(reference.length, 1);
    }
    return bytes;
}

}  // namespace tav
