// Sets of slots on the pages of one table, for the checker: 32 bytes per page.
#pragma once

#include <bitset>
#include <functional>
#include <vector>

#include "jet/file/format.h"

namespace tav::jet::check {

class SlotSet {
 public:
    SlotSet() = default;
    // `pages` ascending.
    explicit SlotSet(std::vector<PageNumber> pages) : pages_(std::move(pages)), slots_(pages_.size()) {}

    const std::vector<PageNumber>& pages() const { return pages_; }
    bool HasPage(PageNumber page) const;
    bool Contains(Pointer slot) const;
    // False when the slot is in the set already, or its page is none of the set's.
    bool Add(Pointer slot);
    std::size_t Count() const;
    // Calls `visit` with every slot of this set that `other`, a set on the same pages, lacks.
    void ForEachNotIn(const SlotSet& other, const std::function<void(Pointer)>& visit) const;

 private:
    // Position of the page, or pages_.size().
    std::size_t IndexOf(PageNumber page) const;

    std::vector<PageNumber> pages_;
    std::vector<std::bitset<256>> slots_;
};

}  // namespace tav::jet::check
