#include "jet/file/page_set.h"

namespace tav::jet {

bool PageSet::Join(const std::uint8_t* bytes, std::size_t size, PageNumber first) {
    const std::size_t begin = first / 8;
    if (first % 8 != 0 || begin > bits_.size()) return false;
    const std::size_t inside = std::min(size, bits_.size() - begin);
    std::uint8_t* own = bits_.data() + begin;
    unsigned refused = 0;
    for (std::size_t i = 0; i < inside; ++i) refused |= own[i] & bytes[i];
    for (std::size_t i = inside; i < size; ++i) refused |= bytes[i];
    // The last byte of the set may have bits at and beyond the count.
    if (begin + inside == bits_.size() && inside > 0 && count_ % 8 != 0)
        refused |= bytes[inside - 1] >> count_ % 8;
    if (refused != 0) return false;
    for (std::size_t i = 0; i < inside; ++i) own[i] |= bytes[i];
    return true;
}

}  // namespace tav::jet
