// A set of page numbers below a fixed count, as the bits of bitmap.h.
#pragma once

#include <vector>

#include "jet/file/bitmap.h"

namespace tav::jet {

class PageSet {
 public:
    explicit PageSet(PageNumber count = 0) : count_(count), bits_((count + std::size_t{7}) / 8) {}

    bool Has(PageNumber page) const { return page < count_ && Bit(bits_.data(), page); }
    // A page below the count. False when it was in the set.
    bool Add(PageNumber page) {
        if (Has(page)) return false;
        SetBit(bits_.data(), page, true);
        return true;
    }
    void Remove(PageNumber page) {
        if (page < count_) SetBit(bits_.data(), page, false);
    }
    // Adds the pages from `first` on whose bits are set in so many bytes. False, and nothing added, when one of them
    // is in the set or not below the count, or when `first` begins no byte.
    bool Join(const std::uint8_t* bytes, std::size_t size, PageNumber first);

 private:
    PageNumber count_;
    std::vector<std::uint8_t> bits_;
};

}  // namespace tav::jet
