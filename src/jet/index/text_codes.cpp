#include "jet/index/text_codes.h"

#include <array>

namespace tav::jet {

namespace {

struct Row {
    char16_t character;
    TextCode code;
};

constexpr Row kRows[] = {
    {u'\t', {0x0803}},
    {u'\n', {0x0804}},
    {u'\v', {0x0805}},
    {u'\f', {0x0806}},
    {u'\r', {0x0807}},
    {u' ', {0x07}},
    {u'!', {0x09}},
    {u'"', {0x0a}},
    {u'#', {0x0c}},
    {u'$', {0x0e}},
    {u'%', {0x10}},
    {u'&', {0x12}},
    {u'(', {0x14}},
    {u')', {0x16}},
    {u'*', {0x18}},
    {u',', {0x1a}},
    {u'.', {0x1c}},
    {u'/', {0x1e}},
    {u':', {0x20}},
    {u';', {0x22}},
    {u'?', {0x24}},
    {u'@', {0x26}},
    {u'[', {0x27}},
    {u'\\', {0x29}},
    {u']', {0x2a}},
    {u'^', {0x2b02}},
    {u'_', {0x2b03}},
    {u'`', {0x2b07}},
    {u'{', {0x2b09}},
    {u'|', {0x2b0b}},
    {u'}', {0x2b0d}},
    {u'~', {0x2b0f}},
    {u'\u00A0', {0x0802}},
    {u'«', {0x3305}},
    {u'»', {0x3307}},
    // Signs of Latin-1.
    {u'¤', {0x34a8}},
    {u'¦', {0x2b11}},
    {u'§', {0x34aa}},
    {u'©', {0x34ab}},
    {u'¬', {0x34ac}},
    {u'®', {0x34ad}},
    {u'°', {0x34ae}},
    {u'±', {0x3304}},
    {u'µ', {0x34af}},
    {u'¶', {0x34b0}},
    {u'·', {0x34b1}},
    {u'…', {0x34b9}},
    {u'€', {0x35a1}},
    {u'№', {0x6302}},
    {u'+', {0x2c}},
    {u'<', {0x2e}},
    {u'=', {0x30}},
    {u'>', {0x32}},
    {u'0', {0x36}},
    {u'1', {0x38}},
    {u'2', {0x3a}},
    {u'3', {0x3c}},
    {u'4', {0x3e}},
    {u'5', {0x40}},
    {u'6', {0x42}},
    {u'7', {0x44}},
    {u'8', {0x46}},
    {u'9', {0x48}},
    {u'A', {0x4a}},
    {u'B', {0x4c}},
    {u'C', {0x4d}},
    {u'D', {0x4f}},
    {u'E', {0x51}},
    {u'F', {0x53}},
    {u'G', {0x55}},
    {u'H', {0x57}},
    {u'I', {0x59}},
    {u'J', {0x5b}},
    {u'K', {0x5c}},
    {u'L', {0x5e}},
    {u'M', {0x60}},
    {u'N', {0x62}},
    {u'O', {0x64}},
    {u'P', {0x66}},
    {u'Q', {0x68}},
    {u'R', {0x69}},
    {u'S', {0x6b}},
    {u'T', {0x6d}},
    {u'U', {0x6f}},
    {u'V', {0x71}},
    {u'W', {0x73}},
    {u'X', {0x75}},
    {u'Y', {0x76}},
    {u'Z', {0x78}},
    {u'А', {0x792f}},
    {u'Б', {0x7930}},
    {u'В', {0x7931}},
    {u'Г', {0x7932}},
    {u'Д', {0x7933}},
    {u'Е', {0x7936}},
    {u'Ж', {0x7938}},
    {u'З', {0x7939}},
    {u'И', {0x793b}},
    {u'Й', {0x793e}},
    {u'К', {0x7940}},
    {u'Л', {0x7941}},
    {u'М', {0x7943}},
    {u'Н', {0x7944}},
    {u'О', {0x7946}},
    {u'П', {0x7947}},
    {u'Р', {0x7948}},
    {u'С', {0x7949}},
    {u'Т', {0x794a}},
    {u'У', {0x794d}},
    {u'Ф', {0x7950}},
    {u'Х', {0x7951}},
    {u'Ц', {0x7952}},
    {u'Ч', {0x7953}},
    {u'Ш', {0x7955}},
    {u'Щ', {0x7956}},
    {u'Ъ', {0x7957}},
    {u'Ы', {0x7958}},
    {u'Ь', {0x7959}},
    {u'Э', {0x795a}},
    {u'Ю', {0x795b}},
    {u'Я', {0x795c}},
    {u'Ё', {0x7936, 0, 0x13}},
    {u'\'', {0, 0x80}},
    {u'-', {0, 0x82}},
    {u'–', {0, 0x89}},
    {u'—', {0, 0x8b}},
};

// All characters of the table lie below this one.
constexpr std::size_t kEnd = u'№' + 1;

constexpr char16_t LowerOf(char16_t c) {
    if ((c >= u'A' && c <= u'Z') || (c >= u'А' && c <= u'Я')) return static_cast<char16_t>(c + 0x20);
    return c == u'Ё' ? u'ё' : c;
}

constexpr std::array<TextCode, kEnd> kCodes = [] {
    std::array<TextCode, kEnd> codes{};
    for (const Row& row : kRows) {
        codes[row.character] = row.code;
        codes[LowerOf(row.character)] = row.code;
    }
    return codes;
}();

}  // namespace

std::optional<TextCode> FindTextCode(char16_t character) {
    if (character >= kEnd) return std::nullopt;
    const TextCode& code = kCodes[character];
    if (code.code == 0 && code.special == 0) return std::nullopt;
    return code;
}

}  // namespace tav::jet
