#include "jet/table/record_space.h"

#include <algorithm>
#include <utility>

#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kNearlyFull = 200;  // free bytes below which a page leaves the map of pages with room
constexpr std::size_t kSlotSize = 2;

bool HasMap(Pointer map) {
    return map.page != 0;
}

}  // namespace

bool RecordSpace::Owns(PageNumber page) const {
    return UsageMap(*file_, owned_map_).Contains(page);
}

// The page that may have room. What another program says of free pages is a hint only.
PageNumber RecordSpace::Candidate() const {
    const bool last = order_ == Order::Ascending || !HasMap(free_map_);
    const PageNumber page = UsageMap(*file_, last ? owned_map_ : free_map_).Last();
    return page != 0 && Owns(page) ? page : 0;
}

PageNumber RecordSpace::OpenPage() {
    if (known_since_ != file_->Rollbacks()) {
        open_page_ = Candidate();
        known_since_ = file_->Rollbacks();
    }
    return open_page_;
}

// The page for one record more.
PageNumber RecordSpace::PageFor(std::size_t size) {
    if (OpenPage() != 0) {
        const Page& page = ReadDataPage(*file_, open_page_, owner_);
        if (std::exchange(sound_page_, open_page_) != open_page_) CheckSlots(*file_, open_page_, page);
        const bool has_room = FreeBytes(*file_, open_page_, page) >= size + kSlotSize;
        if (has_room && SlotCount(page) < kMaximumSlots) return open_page_;
    }
    const PageNumber above = order_ == Order::Ascending ? open_page_ : 0;
    const PageNumber fresh = UsageMap(*file_, owned_map_).TakePage(above);
    InitializeDataPage(file_->Change(fresh), owner_);
    if (HasMap(free_map_)) UsageMap(*file_, free_map_).Add(fresh);
    open_page_ = sound_page_ = fresh;
    return fresh;
}

Pointer RecordSpace::Add(std::string_view bytes, std::uint16_t flags) {
    const PageNumber number = PageFor(bytes.size());
    Page& page = file_->Change(number);
    const std::span record(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const std::uint8_t slot = AddRecord(page, record, flags);
    if (FreeBytes(*file_, number, page) < kNearlyFull && HasMap(free_map_)) {
        UsageMap(*file_, free_map_).Remove(number);
    }
    return {number, slot};
}

void RecordSpace::Drop(std::vector<Pointer> slots) {
    std::ranges::sort(slots);
    const std::span<const Pointer> all = slots;
    for (std::size_t begin = 0, end = 0; begin < all.size(); begin = end) {
        const PageNumber page = all[begin].page;
        while (end < all.size() && all[end].page == page) ++end;
        DropFrom(page, all.subspan(begin, end - begin));
    }
}

// Slots of one page, ascending. A page that nothing is left of goes as it is. A deleted record that still has
// bytes may be the body of a moved row.
void RecordSpace::DropFrom(PageNumber number, std::span<const Pointer> slots) {
    const Page& before = ReadDataPage(*file_, number, owner_);
    bool is_left = false;
    std::size_t dropped = 0;
    for (unsigned slot = 0; slot < SlotCount(before); ++slot) {
        const bool goes = dropped < slots.size() && slots[dropped].slot == slot;
        while (dropped < slots.size() && slots[dropped].slot == slot) ++dropped;
        const Record record = RecordAt(*file_, number, before, slot);
        is_left = is_left || (!goes && (!record.IsDeleted() || record.size > 0));
    }
    if (dropped < slots.size()) RecordAt(*file_, number, before, slots[dropped].slot);  // which is not there
    if (!is_left) return Release(number);

    const std::uint16_t free_before = FreeBytes(*file_, number, before);
    Page& page = file_->Change(number);
    for (const Pointer at : slots) {
        ResizeRecord(page, at.slot, 0);
        SetSlotFlags(page, at.slot, kSlotDeleted);
    }
    const bool has_room_again = free_before < kNearlyFull && FreeBytes(*file_, number, page) >= kNearlyFull;
    // The map is a hint. It never takes a page for it, so that rows of a full file can be deleted.
    if (has_room_again && HasMap(free_map_)) UsageMap(*file_, free_map_).AddInPlace(number);
}

void RecordSpace::Release(PageNumber page) {
    if (HasMap(free_map_)) UsageMap(*file_, free_map_).Remove(page);
    UsageMap(*file_, owned_map_).DropPage(page);
    ++releases_;
    if (page == open_page_) known_since_.reset();
}

}  // namespace tav::jet
