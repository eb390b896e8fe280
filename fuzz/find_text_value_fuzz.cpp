// Any bytes as the source of a frame; the first two say where to begin.
#include "convert/find_text_value.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return tav::fuzz::Try([&] {
        if (size < 2) return;
        const auto begin = static_cast<std::int16_t>(data[0] << 8 | data[1]);
        const std::string_view text = tav::fuzz::Bytes(data + 2, size - 2);
        std::int32_t pos = begin;
        tav::FindTextValueQuietly(pos, text);
        pos = begin;
        tav::FindTextValue(pos, text);
        pos = begin;
        tav::GetKeyValue(pos, text, "cf1 ");
    });
}
