// Any bytes through the page converter and the line reader: no crash, no access outside, nothing slow.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/failure.h"
#include "common/get_next.h"
#include "convert/cell_positions.h"
#include "convert/page_reader.h"
#include "convert/statement_lines.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) try {
    tav::PageReader reader(std::string(data, data + size));
    std::string text;
    while (reader.More()) text.append(reader.Next()).append("\r\n##p");
    text = tav::ReplaceCellPositions(text);
    tav::StatementLines lines;
    for (std::string_view rest = text; !rest.empty();) lines.Add(tav::GetNext(rest, "\r\n"));
    return 0;
} catch (const tav::Failure&) {
    return 0;
}
