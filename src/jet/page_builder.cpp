#include "jet/page_builder.h"

#include <algorithm>

#include "common/failure.h"

namespace tav::jet {
namespace {

constexpr std::size_t kDataHeader = 14;
constexpr std::size_t kMapBytes = 64;
constexpr std::size_t kLeafMask = 27;
constexpr std::size_t kLeafEntries = 480;

[[noreturn]] void TooManyTables() {
    throw Failure(u"The tables of a new database do not fit its system tables.");
}

}  // namespace

DataPage::DataPage(std::uint32_t owner) {
    page_[0] = static_cast<std::uint8_t>(PageType::Data);
    page_[1] = 1;
    PutU16(&page_[2], kPageSize - kDataHeader);
    PutU32(&page_[4], owner);
}

std::uint8_t DataPage::Add(std::string_view record) {
    const std::uint16_t slots = U16(&page_[12]);
    const std::uint16_t free = U16(&page_[2]);
    if (slots >= 255 || free < record.size() + 2) TooManyTables();
    const std::size_t start = kDataHeader + 2u * slots + free - record.size();
    std::copy(record.begin(), record.end(), page_.begin() + static_cast<std::ptrdiff_t>(start));
    PutU16(&page_[kDataHeader + 2u * slots], static_cast<std::uint16_t>(start));
    PutU16(&page_[12], static_cast<std::uint16_t>(slots + 1));
    PutU16(&page_[2], static_cast<std::uint16_t>(free - record.size() - 2));
    return static_cast<std::uint8_t>(slots);
}

std::string MapRecord(PageNumber first, PageNumber end) {
    std::string record(5 + kMapBytes, '\0');
    if (first > end || end > kMapBytes * 8) TooManyTables();
    for (PageNumber page = first; page < end; ++page) {
        char& byte = record[5 + page / 8];
        byte = static_cast<char>(byte | 1 << page % 8);
    }
    return record;
}

Page LeafPage(std::uint32_t owner, std::span<const std::string> entries) {
    Page page{};
    page[0] = static_cast<std::uint8_t>(PageType::IndexLeaf);
    page[1] = 1;
    PutU32(&page[4], owner);
    std::size_t used = 0;
    for (const std::string& entry : entries) {
        if (kLeafEntries + used + entry.size() > kPageSize) TooManyTables();
        std::copy(entry.begin(), entry.end(),
                  page.begin() + static_cast<std::ptrdiff_t>(kLeafEntries + used));
        used += entry.size();
        page[kLeafMask + used / 8] |= static_cast<std::uint8_t>(1 << used % 8);
    }
    PutU16(&page[2], static_cast<std::uint16_t>(kPageSize - kLeafEntries - used));
    return page;
}

std::string LeafEntry(std::string_view key, RowId row) {
    std::string entry(key);
    const std::uint32_t word = row.Word();
    for (const int shift : {24, 16, 8, 0}) entry += static_cast<char>(word >> shift & 0xFF);
    return entry;
}

}  // namespace tav::jet
