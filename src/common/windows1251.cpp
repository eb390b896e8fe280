#include "common/windows1251.h"

#include <algorithm>
#include <array>

namespace tav {
namespace {

// The characters of the bytes 0x80 to 0xBF; 0xC0 to 0xFF are the letters U+0410 to U+044F in order.
constexpr std::array<char16_t, 64> kMiddle = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

// Everything in the code page lies below this character.
constexpr std::size_t kTableSize = 0x2123;

constexpr auto kBytes = [] {
    std::array<unsigned char, kTableSize> bytes{};
    for (unsigned c = 1; c < 0x80; ++c) bytes[c] = static_cast<unsigned char>(c);
    for (unsigned i = 0; i < kMiddle.size(); ++i) bytes[kMiddle[i]] = static_cast<unsigned char>(0x80 + i);
    for (unsigned i = 0; i < 64; ++i) bytes[0x410 + i] = static_cast<unsigned char>(0xC0 + i);
    return bytes;
}();

bool HasByte(char16_t c) {
    return c == 0 || (c < kTableSize && kBytes[c] != 0);
}

}  // namespace

char16_t FromWindows1251(unsigned char byte) {
    if (byte < 0x80) return byte;
    return byte < 0xC0 ? kMiddle[byte - 0x80U] : static_cast<char16_t>(0x410 + (byte - 0xC0));
}

Text FromWindows1251(std::string_view bytes) {
    Text out(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), out.begin(),
                   [](char byte) { return FromWindows1251(static_cast<unsigned char>(byte)); });
    return out;
}

char ToWindows1251(char16_t c) {
    if (HasByte(c)) return c == 0 ? '\0' : static_cast<char>(kBytes[c]);
    if (c == 0x2010 || c == 0x2011 || c == 0x2212) return '-';
    if ((c >= 0x2000 && c <= 0x200A) || c == 0x202F) return ' ';
    return '?';
}

std::string ToWindows1251(TextView text) {
    std::string out(text.size(), '\0');
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const unsigned char byte = c < kTableSize ? kBytes[c] : 0;
        out[length++] = byte != 0 ? static_cast<char>(byte) : ToWindows1251(c);
        const bool pair = c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                          text[i + 1] <= 0xDFFF;
        if (pair) ++i;
    }
    out.resize(length);
    return out;
}

bool IsWindows1251(TextView text) {
    return std::all_of(text.begin(), text.end(), HasByte);
}

}  // namespace tav
