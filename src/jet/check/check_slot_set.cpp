#include "jet/check/check_slot_set.h"

#include <algorithm>

namespace tav::jet::check {

std::size_t SlotSet::IndexOf(PageNumber page) const {
    const auto found = std::ranges::lower_bound(pages_, page);
    if (found == pages_.end() || *found != page) return pages_.size();
    return static_cast<std::size_t>(found - pages_.begin());
}

bool SlotSet::HasPage(PageNumber page) const {
    return IndexOf(page) != pages_.size();
}

bool SlotSet::Contains(Pointer slot) const {
    const std::size_t index = IndexOf(slot.page);
    return index != pages_.size() && slots_[index][slot.slot];
}

bool SlotSet::Add(Pointer slot) {
    const std::size_t index = IndexOf(slot.page);
    if (index == pages_.size() || slots_[index][slot.slot]) return false;
    slots_[index].set(slot.slot);
    return true;
}

std::size_t SlotSet::Count() const {
    std::size_t count = 0;
    for (const std::bitset<256>& page : slots_) count += page.count();
    return count;
}

void SlotSet::ForEachNotIn(const SlotSet& other, const std::function<void(Pointer)>& visit) const {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const std::bitset<256> lacking = slots_[i] & ~other.slots_[i];
        if (lacking.none()) continue;
        for (std::size_t slot = 0; slot < lacking.size(); ++slot) {
            if (lacking[slot]) visit({pages_[i], static_cast<std::uint8_t>(slot)});
        }
    }
}

}  // namespace tav::jet::check
