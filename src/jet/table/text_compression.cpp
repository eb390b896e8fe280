#include "jet/table/text_compression.h"

namespace tav::jet {
namespace {

constexpr char16_t kCompressionMark = u'\uFEFF';  // FF FE on the disk
constexpr std::size_t kShortestCompressed = 3;

bool IsNarrow(char16_t c) {
    return c <= 0xFF;
}

// Bytes of the compressed form; no value when a character cannot stand in it.
std::optional<std::size_t> CompressedSize(TextView text) {
    std::size_t size = 2;
    bool narrow = true;
    for (const char16_t c : text) {
        if ((c & 0xFF) == 0) return std::nullopt;
        if (IsNarrow(c) != narrow) {
            narrow = !narrow;
            ++size;
        }
        size += narrow ? 1 : 2;
    }
    return size;
}

}  // namespace

std::optional<Text> DecodeText(const std::uint8_t* bytes, std::size_t size) {
    Text text;
    if (size < 2 || bytes[0] != 0xFF || bytes[1] != 0xFE) {
        if (size % 2 != 0) return std::nullopt;
        text.resize(size / 2);
        for (std::size_t i = 0; i < text.size(); ++i) text[i] = U16(bytes + 2 * i);
        return text;
    }
    text.reserve(size - 2);
    bool narrow = true;
    for (std::size_t i = 2; i < size; ++i) {
        if (bytes[i] == 0) {
            narrow = !narrow;
        } else if (narrow) {
            text += static_cast<char16_t>(bytes[i]);
        } else {
            if (i + 1 == size) return std::nullopt;
            text += static_cast<char16_t>(U16(bytes + i));
            ++i;
        }
    }
    return text;
}

bool AppendText(std::string& out, TextView text, bool compress) {
    const bool must = text.starts_with(kCompressionMark);
    const std::optional<std::size_t> size = compress || must ? CompressedSize(text) : std::nullopt;
    const bool worth = size && text.size() >= kShortestCompressed && *size <= 2 * text.size();
    if (must && !size) return false;

    const bool compressed = must || worth;
    const std::size_t begin = out.size();
    out.resize(begin + (compressed ? *size : 2 * text.size()));
    char* to = out.data() + begin;
    const auto put = [&to](char16_t c, bool narrow) {
        *to++ = static_cast<char>(c & 0xFF);
        if (!narrow) *to++ = static_cast<char>(c >> 8);
    };
    if (!compressed) {
        for (const char16_t c : text) put(c, false);
        return true;
    }
    put(kCompressionMark, false);
    bool narrow = true;
    for (const char16_t c : text) {
        if (IsNarrow(c) != narrow) {
            narrow = !narrow;
            put(0, true);
        }
        put(c, narrow);
    }
    return true;
}

}  // namespace tav::jet
