#include "jet/check/check_index_page.h"

namespace tav::jet::check {
namespace {

constexpr std::size_t kHeight = 26;
constexpr std::size_t kMask = 27;
constexpr std::size_t kEntries = 480;
constexpr std::size_t kEntryBytes = kPageSize - kEntries;
constexpr std::size_t kShortestLeafEntry = 5;  // one byte of key and the row id
constexpr std::size_t kChild = 4;

// Offsets where entries end, ascending.
std::vector<std::size_t> EntryEnds(const Page& page) {
    std::vector<std::size_t> ends;
    for (std::size_t byte = 0; byte < kEntries - kMask; ++byte) {
        for (std::size_t bit = 0; page[kMask + byte] >> bit != 0; ++bit) {
            if ((page[kMask + byte] >> bit & 1) != 0) ends.push_back(8 * byte + bit);
        }
    }
    return ends;
}

}  // namespace

IndexPage ReadIndexPage(const Page& page) {
    IndexPage read;
    read.leaf = page[0] == static_cast<std::uint8_t>(PageType::IndexLeaf);
    read.previous = U32(&page[12]);
    read.next = U32(&page[16]);
    read.tail = U32(&page[20]);
    read.height = page[kHeight];
    if (read.leaf && read.height != 0)
        read.faults.push_back(u"it is a leaf, but says that it stands above others");

    std::vector<std::size_t> ends = EntryEnds(page);
    if (!ends.empty() && ends.back() > kEntryBytes) {
        read.faults.push_back(u"its entries reach beyond the page");
        while (!ends.empty() && ends.back() > kEntryBytes) ends.pop_back();
    }
    if (U16(&page[2]) != kEntryBytes - (ends.empty() ? 0 : ends.back())) {
        read.faults.push_back(u"its free field is not exact");
    }
    const std::size_t prefix = U16(&page[24]);
    if (!ends.empty() && prefix != 0 && prefix >= ends.front()) {
        read.faults.push_back(u"its prefix is longer than its first entry");
        return read;
    }
    const std::size_t shortest = kShortestLeafEntry + (read.leaf ? 0 : kChild);
    std::size_t begin = 0;
    std::string shared;
    for (const std::size_t end : ends) {
        std::string entry = shared;
        entry.append(page.begin() + static_cast<std::ptrdiff_t>(kEntries + begin),
                     page.begin() + static_cast<std::ptrdiff_t>(kEntries + end));
        begin = end;
        if (shared.empty()) shared = entry.substr(0, prefix);
        if (entry.size() < shortest) {
            read.faults.push_back(u"an entry is too short");
            continue;
        }
        if (!read.leaf) {
            const auto* bytes = reinterpret_cast<const std::uint8_t*>(entry.data());
            read.children.push_back(BigU32(bytes + entry.size() - kChild));
            entry.resize(entry.size() - kChild);
        }
        read.entries.push_back(std::move(entry));
    }
    return read;
}

}  // namespace tav::jet::check
