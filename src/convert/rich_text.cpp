#include "convert/rich_text.h"

#include <algorithm>
#include <cstring>

#include "common/windows1251.h"
#include "convert/characters.h"

namespace tav {
namespace {

constexpr std::string_view kStart = "{\\rtf";
constexpr std::size_t kFonts = 32768;
constexpr std::int32_t kLargestNumber = 1'000'000'000;

// Bytes that are text as they stand (through the code page); the others steer.
constexpr auto kPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte < plain.size(); ++byte) plain[byte] = true;
    plain['\t'] = true;
    plain['\\'] = plain['{'] = plain['}'] = false;
    return plain;
}();

constexpr std::uint8_t kNoDigit = 255;

constexpr auto kHexDigit = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (std::uint8_t i = 0; i < 10; ++i) digits['0' + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        digits['a' + i] = digits['A' + i] = static_cast<std::uint8_t>(10 + i);
    }
    return digits;
}();

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

bool IsPlain(char c) {
    return kPlain[Byte(c)];
}

// A number of any length, cut to 32 bits.
std::int32_t NumberOf(bool negative, const char* at, const char* end) {
    std::int32_t value = 0;
    for (; at != end; ++at) value = value < kLargestNumber / 10 ? value * 10 + (*at - '0') : kLargestNumber;
    return negative ? -value : value;
}

bool IsVisible(char c) {
    return c != ' ' && c != '\t' && c != '\r' && c != '\n' && c != '\xA0';
}

}  // namespace

std::string_view RichText::Read(std::string_view document) {
    Begin(document);
    if (document.starts_with(kStart)) ReadAll();
    return Finish();
}

void RichText::Begin(std::string_view document) {
    at_ = document.data();
    end_ = at_ + document.size();
    if (capacity_ < document.size() + 1) {
        const std::size_t capacity = 2 * document.size() + 1;
        buffer_ = std::make_unique_for_overwrite<char[]>(capacity);
        capacity_ = capacity;
    }
    out_ = paragraph_ = buffer_.get();
    depth_ = 0;
    open_groups_ = 0;
    format_ = {};
    outer_formats_.clear();
    font_maps_.clear();
    default_font_ = 0;
    group_start_ = nullptr;
    after_break_ = row_ = document_end_ = nullptr;
    in_row_ = false;
    SetDocumentMap(0);
}

// A control's text has a last paragraph that no line break ends.
char* RichText::EndOfText() const {
    return after_break_ == out_ ? out_ - 2 : out_;
}

std::string_view RichText::Finish() {
    char* const end = document_end_ == nullptr ? EndOfText() : document_end_;
    dropped_text_ = std::any_of(end, out_, IsVisible);
    return {buffer_.get(), static_cast<std::size_t>(end - buffer_.get())};
}

void RichText::ReadAll() {
    while (at_ != end_) {
        const char c = *at_;
        if (c == '\\') {
            ReadEscape();
        } else if (IsPlain(c)) {
            ReadPlain();
        } else if (c == '{') {
            OpenGroup();
        } else if (c == '}') {
            CloseGroup();
        } else {
            ReadLineEnd();
        }
    }
}

// The bytes written may be any of this object's, as far as the compiler knows: the loops over bytes have their own
// pointers.
void RichText::ReadPlain() {
    const char* at = at_;
    char* out = out_;
    const ByteMap& map = *map_;
    do {
        *out++ = map[Byte(*at++)];
    } while (at != end_ && IsPlain(*at));
    at_ = at;
    out_ = out;
}

inline bool RichText::AtFrame(const char* at) const {
    return static_cast<std::size_t>(end_ - at) >= kFrame.size() &&
           std::memcmp(at, kFrame.data(), kFrame.size()) == 0;
}

void RichText::ReadFrame() {
    Put((*map_)[' ']);
    ++at_;
}

// A line end in the source, or a control character: neither is text, nor does it part what stands around it.
void RichText::ReadLineEnd() {
    if (group_start_ == at_) ++group_start_;
    ++at_;
}

void RichText::ReadEscape() {
    if (end_ - at_ < 2) {
        at_ = end_;
    } else if (at_[1] == '\'') {
        ReadHexBytes();
    } else if (!IsLetter(at_[1])) {
        ReadSymbol();
    } else if (AtFrame(at_)) {
        ReadFrame();
    } else {
        ReadWords();
    }
}

void RichText::ReadHexBytes() {
    const char* at = at_;
    char* out = out_;
    const ByteMap& map = *map_;
    do {
        const unsigned high = end_ - at < 4 ? kNoDigit : kHexDigit[Byte(at[2])];
        const unsigned low = end_ - at < 4 ? kNoDigit : kHexDigit[Byte(at[3])];
        if (high == kNoDigit || low == kNoDigit) {
            at += 2;
            break;
        }
        *out = map[high * 16 + low];
        out += *out != 0;
        at += 4;
    } while (end_ - at >= 2 && at[0] == '\\' && at[1] == '\'');
    at_ = at;
    out_ = out;
}

void RichText::ReadSymbol() {
    const char symbol = at_[1];
    const bool opens_group = group_start_ == at_;
    const bool is_frame = AtFrame(at_ + 1);
    at_ += 2;
    if (is_frame) return;
    switch (symbol) {
        case '\\':
        case '{':
        case '}':
        case ':':
        case '\t':
            return Put(symbol);
        case '~':
            return Put('\xA0');
        case '_':
            return Put('-');
        case '\r':
        case '\n':
            if (symbol == '\r' && at_ != end_ && *at_ == '\n') ++at_;
            return PutBreak();
        case '*':
            if (opens_group) PassGroup([](const Word&) {});
            return;
        default:
            return;
    }
}

// The word at its backslash, with its number and the space that ends it; `at` moves past them.
[[gnu::always_inline]] inline RichText::Word RichText::TakeWord(const char*& at) const {
    const RtfWord& known = TakeRtfWord(++at, end_);
    const bool negative = end_ - at >= 2 && at[0] == '-' && IsDigit(at[1]);
    const char* const number = at + (negative ? 1 : 0);
    for (at = number; at != end_ && IsDigit(*at);) ++at;
    Word word{&known, 0, at != number};
    if (known.action != RtfAction::None) word.value = NumberOf(negative, number, at);
    if (at != end_ && (*at == ' ' || AtFrame(at))) ++at;
    return word;
}

RichText::Word RichText::ReadWord() {
    return TakeWord(at_);
}

// Control words one after the other; most of them are formatting.
void RichText::ReadWords() {
    const char* at = at_;
    do {
        const Word word = TakeWord(at);
        if (word.known->action == RtfAction::None) continue;
        at_ = at;
        Apply(word);
        at = at_;
    } while (end_ - at >= 2 && at[0] == '\\' && IsLetter(at[1]) && !AtFrame(at));
    at_ = at;
}

void RichText::Apply(Word word) {
    switch (word.known->action) {
        case RtfAction::None:
        case RtfAction::FontCharset:
        case RtfAction::FontCodePage:
            return;
        case RtfAction::Break:
            return PutBreak();
        case RtfAction::Character:
            return Put(word.known->character);
        case RtfAction::InRow:
            if (row_ == nullptr) row_ = paragraph_;
            return;
        case RtfAction::Cell:
            return EndCell();
        case RtfAction::Row:
            return EndRow();
        case RtfAction::Unicode:
            if (word.has_value) PutUnicode(word.value);
            return;
        case RtfAction::UnicodeSkip:
            if (FormatIsKept()) format_.unicode_skip = word.has_value ? std::max(word.value, 0) : 1;
            return;
        case RtfAction::Binary:
            return PassBinary(word.value);
        case RtfAction::Drop:
            return PassGroup([](const Word&) {});
        case RtfAction::FontTable:
            return ReadFontTable();
        case RtfAction::Font:
            return SetFont(word.value);
        case RtfAction::Plain:
            return SetFont(default_font_);
        case RtfAction::DefaultFont:
            default_font_ = word.value;
            return SetFont(default_font_);
        case RtfAction::CodePage:
            return SetDocumentMap(word.value);
    }
}

void RichText::OpenGroup() {
    if (FormatIsKept() && depth_ < kDeepest) outer_formats_.push_back(format_);
    ++depth_;
    ++open_groups_;
    group_start_ = ++at_;
}

void RichText::CloseGroup() {
    if (depth_ == 1 && document_end_ == nullptr) {
        document_end_ = paragraph_ = out_ = EndOfText();
        row_ = nullptr;
    }
    ++at_;
    --open_groups_;
    if (depth_ == 0) return;
    if (FormatIsKept()) {
        format_ = outer_formats_.back();
        outer_formats_.pop_back();
        ChooseMap();
    }
    --depth_;
}

template <class OnWord>
void RichText::PassGroup(OnWord&& on_word) {
    for (std::size_t inner = 0; at_ != end_;) {
        const char c = *at_;
        if (c == '}') {
            if (inner == 0) return;
            --inner;
            --open_groups_;
        } else if (c == '{') {
            ++inner;
            ++open_groups_;
        } else if (c == '\\') {
            if (end_ - at_ >= 2 && IsLetter(at_[1])) {
                const Word word = ReadWord();
                if (word.known->action == RtfAction::Binary) PassBinary(word.value);
                on_word(word);
                continue;
            }
            if (end_ - at_ >= 2) ++at_;
        }
        ++at_;
    }
}

void RichText::ReadFontTable() {
    std::int32_t font = -1;
    PassGroup([&](const Word& word) {
        std::int32_t code_page = 0;
        switch (word.known->action) {
            case RtfAction::Font:
                font = word.value;
                return;
            case RtfAction::FontCharset:
                code_page = CodePageOfCharset(word.value);
                break;
            case RtfAction::FontCodePage:
                code_page = word.value;
                break;
            default:
                return;
        }
        if (code_page <= 0 || font < 0 || static_cast<std::size_t>(font) >= kFonts) return;
        const auto number = static_cast<std::size_t>(font);
        if (number >= font_maps_.size()) font_maps_.resize(number + 1);
        font_maps_[number] = &MapOfCodePage(code_page);
    });
    ChooseMap();
}

// Behind \u stands what readers without Unicode show: so many characters, each of them plain, \'xx or a
// whole control word. A brace ends it.
void RichText::PassUnicodeFallback() {
    for (std::int32_t left = format_.unicode_skip; left > 0 && at_ != end_ && *at_ != '{' && *at_ != '}';) {
        if (*at_ != '\\' || AtFrame(at_)) {
            if (*at_ == '\\' || IsPlain(*at_)) --left;
            ++at_;
            continue;
        }
        --left;
        if (end_ - at_ < 2) {
            at_ = end_;
        } else if (IsLetter(at_[1])) {
            const Word word = ReadWord();
            if (word.known->action == RtfAction::Binary) PassBinary(word.value);
        } else {
            const bool hex = at_[1] == '\'' && end_ - at_ >= 4 && kHexDigit[Byte(at_[2])] != kNoDigit &&
                             kHexDigit[Byte(at_[3])] != kNoDigit;
            at_ += hex ? 4 : 2;
        }
    }
}

void RichText::PassBinary(std::int32_t size) {
    at_ += std::min<std::ptrdiff_t>(std::max(size, 0), end_ - at_);
}

// Byte 0 stands for no character.
void RichText::Put(char byte) {
    *out_ = byte;
    if (byte != 0) ++out_;
}

void RichText::PutBreak() {
    *out_++ = '\r';
    *out_++ = '\n';
    paragraph_ = after_break_ = out_;
}

// Numbers above 32767 are often written as negative ones. A character beyond 16 bits comes as two halves and
// shows once, with its first half.
void RichText::PutUnicode(std::int32_t number) {
    if (number < 0) number += 65536;
    const bool second_half = number >= 0xDC00 && number <= 0xDFFF;
    if (number < 0 || number > 0xFFFF) {
        Put('?');
    } else if (!second_half && (number >= 0x20 || number == '\t')) {
        Put(ToWindows1251(static_cast<char16_t>(number)));
    }
    PassUnicodeFallback();
}

void RichText::EndCell() {
    if (!in_row_) {
        char* const row = row_ == nullptr ? paragraph_ : row_;
        std::memmove(row + 2, row, static_cast<std::size_t>(out_ - row));
        row[0] = '\r';
        row[1] = '\n';
        paragraph_ += 2;
        out_ += 2;
        in_row_ = true;
    }
    Put('\t');
}

// A row's end stays, also at the end of the document.
void RichText::EndRow() {
    PutBreak();
    after_break_ = row_ = nullptr;
    in_row_ = false;
}

void RichText::SetFont(std::int32_t font) {
    if (!FormatIsKept()) return;
    format_.font = font;
    ChooseMap();
}

void RichText::SetDocumentMap(std::int32_t code_page) {
    document_map_ = &MapOfCodePage(code_page);
    ChooseMap();
}

void RichText::ChooseMap() {
    const bool listed = format_.font >= 0 && static_cast<std::size_t>(format_.font) < font_maps_.size();
    const ByteMap* const own = listed ? font_maps_[static_cast<std::size_t>(format_.font)] : nullptr;
    map_ = own == nullptr ? document_map_ : own;
}

}  // namespace tav
