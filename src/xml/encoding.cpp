#include "xml/encoding.h"

#include <array>

#include "common/text.h"
#include "common/windows1251.h"

namespace tav {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The character at `at` with the rest of its surrogate pair.
char32_t CodePoint(TextView text, std::size_t& at) {
    const char32_t high = text[at++];
    if (high < 0xD800 || high > 0xDBFF || at == text.size()) return high;
    const char32_t low = text[at];
    if (low < 0xDC00 || low > 0xDFFF) return high;
    ++at;
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

}  // namespace

bool DeclaresWindows1251(std::string_view document) {
    if (!document.starts_with("<?xml")) return false;
    const std::string_view declaration = document.substr(0, document.find("?>"));
    constexpr std::string_view kEncoding = "encoding";
    std::size_t at = declaration.find(kEncoding);
    if (at == declaration.npos) return false;
    at += kEncoding.size();
    while (at < declaration.size() && (IsBlank(declaration[at]) || declaration[at] == '=')) ++at;
    if (at == declaration.size() || (declaration[at] != '"' && declaration[at] != '\'')) return false;
    const std::size_t end = declaration.find(declaration[at], at + 1);
    if (end == declaration.npos) return false;
    const Text name = FromUtf8(declaration.substr(at + 1, end - at - 1));
    return EqualNoCase(name, u"windows-1251") || EqualNoCase(name, u"cp1251");
}

std::string Utf8FromWindows1251(std::string_view bytes) {
    static const auto kTable = [] {
        std::array<std::string, 256> table;
        for (unsigned byte = 0; byte < table.size(); ++byte) {
            table[byte] = ToUtf8(Text(1, FromWindows1251(static_cast<unsigned char>(byte))));
        }
        return table;
    }();
    std::string utf8;
    utf8.reserve(bytes.size() + bytes.size() / 2);
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x80) {
            utf8.push_back(byte);
        } else {
            utf8.append(kTable[static_cast<unsigned char>(byte)]);
        }
    }
    return utf8;
}

std::string Windows1251Markup(std::string_view utf8) {
    const Text text = FromUtf8(utf8);
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 16);
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = CodePoint(text, at);
        const TextView character = TextView(text).substr(at - 1, 1);
        if (code == U'\n') {
            bytes.append("\r\n");
        } else if (code < 0x80) {
            bytes.push_back(static_cast<char>(code));
        } else if (code < 0x10000 && IsWindows1251(character)) {
            bytes.push_back(ToWindows1251(character.front()));
        } else {
            bytes.append("&#").append(std::to_string(static_cast<unsigned long>(code))).push_back(';');
        }
    }
    return bytes;
}

}  // namespace tav
