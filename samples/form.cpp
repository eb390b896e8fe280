#include "samples/form.h"

#include <array>
#include <cstdlib>

#include "common/windows1251.h"

namespace tav::samples {
namespace {

constexpr char16_t kNoBreakBlank = 0x00A0;
constexpr char16_t kNoBreakHyphen = 0x2011;

std::string Hex(unsigned char byte, const char* digits) {
    return {'\\', '\'', digits[byte >> 4], digits[byte & 15]};
}

std::string Written(unsigned char byte, Letters letters) {
    if (byte < 0x80) {
        std::string ascii(1, static_cast<char>(byte));
        return byte == '\\' || byte == '{' || byte == '}' ? "\\" + ascii : ascii;
    }
    const std::string lower = Hex(byte, "0123456789abcdef");
    const std::string unicode = "\\u" + std::to_string(FromWindows1251(byte));
    switch (letters) {
        case Letters::LowerHex:
            return lower;
        case Letters::UpperHex:
            return Hex(byte, "0123456789ABCDEF");
        case Letters::Unicode:
            return unicode + "?";
        case Letters::UnicodeHex:
            return unicode + lower;
        case Letters::Raw:
            break;
    }
    return std::string(1, static_cast<char>(byte));
}

std::string Number(const char* word, int value) {
    return word + std::to_string(value);
}

// Whole roubles, a point and two digits, without a sign.
Text Unsigned(long long kopecks, TextView between_thousands) {
    const long long positive = std::llabs(kopecks);
    Text roubles = Digits(positive / 100);
    for (std::size_t at = roubles.size(); at > 3;) roubles.insert(at -= 3, between_thousands);
    return roubles + u"." + Digits(positive % 100, 2);
}

}  // namespace

Text Plain(TextView text) {
    return FromWindows1251(ToWindows1251(text));
}

Text AmountText(long long kopecks) {
    return Text(kopecks < 0, kNoBreakHyphen) + Unsigned(kopecks, TextView(&kNoBreakBlank, 1));
}

Text PlainAmountText(long long kopecks) {
    return (kopecks < 0 ? u"-" : u"") + Unsigned(kopecks, u"");
}

Text DateText(const CivilDate& date) {
    return Digits(date.day, 2) + u"." + Digits(date.month, 2) + u"." + Digits(date.year, 4);
}

Form::Form(TextView title, const Sheet& sheet, Letters letters, Cut cut) : sheet_(sheet), cut_(cut) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto character = static_cast<unsigned char>(byte);
        letters_[character] = Written(character, letters);
    }
    rtf_ =
        "{\\rtf1\\ansi\\ansicpg1251\\deff1\\deflang1049\r\n"
        "{\\fonttbl{\\f0\\froman\\fcharset204 Times New Roman;}{\\f1\\fswiss\\fcharset204 Arial;}}\r\n"
        "{\\colortbl;\\red0\\green0\\blue0;}\r\n"
        "{\\info{\\title ";
    Escape(title);
    rtf_ += "}}\r\n";
    rtf_ += Number("\\paperw", sheet.width) + Number("\\paperh", sheet.height);
    if (sheet.width > sheet.height) rtf_ += "\\landscape";
    for (const char* margin : {"\\margl", "\\margr", "\\margt", "\\margb"}) rtf_ += Number(margin, kMargin);
    rtf_ += "\r\n";
}

void Form::Frame(const Box& box, const Look& look, TextView text) {
    Open(box, look);
    Run(look, text);
    rtf_ += "}\r\n";
}

void Form::Frame(const Box& box, const Look& look, const std::vector<Text>& lines) {
    Open(box, look);
    for (const Text& line : lines) Run(look, line);
    rtf_ += "}\r\n";
}

bool Form::Need(int height) {
    return y_ + height > sheet_.height - kMargin && NewSheet();
}

bool Form::NewSheet() {
    if (cut_ == Cut::None) return false;
    y_ = kMargin;
    rtf_ += cut_ == Cut::InsideGroup ? "{\\pard\\plain\\page\\par}\r\n"
                                     : "\\pard\\plain\\page\\pard\\plain\\par\r\n";
    return true;
}

std::string Form::Finish() && {
    rtf_ += "}\r\n";
    return std::move(rtf_);
}

void Form::Open(const Box& box, const Look& look) {
    rtf_ += "{\\pard\\plain\\q";
    rtf_ += look.align;
    rtf_ += "\\pvpg\\phpg";
    rtf_ += Number("\\posx", box.x);
    rtf_ += Number("\\posy", box.y);
    rtf_ += Number("\\absw", box.width);
    rtf_ += Number("\\absh-", box.height);
    if (look.border) rtf_ += "\\box\\brdrs\\brdrw5";
}

void Form::Run(const Look& look, TextView text) {
    if (!text.empty()) {
        rtf_ += "{";
        if (look.bold) rtf_ += "\\b";
        rtf_ += Number("\\fs", look.half_points);
        rtf_ += "\\f1\\cf1 ";
        Escape(text);
        rtf_ += "}";
    }
    rtf_ += "\\par";
}

void Form::Escape(TextView text) {
    for (char16_t c : text) {
        if (c == kNoBreakBlank)
            rtf_ += "\\~";
        else if (c == kNoBreakHyphen)
            rtf_ += "\\_";
        else
            rtf_ += letters_[static_cast<unsigned char>(ToWindows1251(c))];
    }
}

}  // namespace tav::samples
