#include "jet/table/table_space.h"

#include <algorithm>

#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kNearlyFull = 200;  // free bytes below which a page leaves the map of pages with room
constexpr std::uint16_t kPointerSize = 4;   // what is left of a moved row
constexpr std::size_t kSlotSize = 2;

bool HasMap(Pointer map) {
    return map.page != 0;
}

std::span<const std::uint8_t> BytesOf(std::string_view row) {
    return {reinterpret_cast<const std::uint8_t*>(row.data()), row.size()};
}

}  // namespace

bool TableSpace::Owns(PageNumber page) const {
    return UsageMap(*file_, definition_->owned_map).Contains(page);
}

PageNumber TableSpace::LastPage() {
    if (known_since_ != file_->Rollbacks()) {
        last_page_ = UsageMap(*file_, definition_->owned_map).Last();
        known_since_ = file_->Rollbacks();
    }
    return last_page_;
}

// The page for one row more.
PageNumber TableSpace::PageFor(std::size_t size) {
    if (LastPage() != 0) {
        const Page& page = ReadDataPage(*file_, last_page_, definition_->page);
        const bool has_room = FreeBytes(*file_, last_page_, page) >= size + kSlotSize;
        if (has_room && SlotCount(page) < kMaximumSlots) return last_page_;
    }
    const PageNumber fresh = UsageMap(*file_, definition_->owned_map).TakePage(last_page_);
    InitializeDataPage(file_->Change(fresh), definition_->page);
    if (HasMap(definition_->free_map)) UsageMap(*file_, definition_->free_map).Add(fresh);
    last_page_ = fresh;
    return fresh;
}

Pointer TableSpace::AddRecordOf(std::string_view row, std::uint16_t flags) {
    const PageNumber number = PageFor(row.size());
    Page& page = file_->Change(number);
    const std::uint8_t slot = AddRecord(page, BytesOf(row), flags);
    if (FreeBytes(*file_, number, page) < kNearlyFull && HasMap(definition_->free_map)) {
        UsageMap(*file_, definition_->free_map).Remove(number);
    }
    return {number, slot};
}

void TableSpace::Replace(const RowPlace& place, std::string_view row) {
    const auto room_for = [&](Pointer at, std::size_t old_size, std::size_t size) {
        const Page& page = file_->Read(at.page);
        CheckSlots(*file_, at.page, page);
        return size <= old_size + FreeBytes(*file_, at.page, page);
    };
    if (room_for(place.body, place.record.size, row.size())) {
        Page& page = file_->Change(place.body.page);
        ResizeRecord(page, place.body.slot, static_cast<std::uint16_t>(row.size()));
        const Record record = RecordAt(*file_, place.body.page, page, place.body.slot);
        std::ranges::copy(BytesOf(row), page.begin() + record.begin);
        return;
    }
    const bool moved_before = place.body != place.home;
    if (!moved_before && !room_for(place.home, place.record.size, kPointerSize)) {
        throw Failure(u"Record is too large.").In(definition_->name);
    }
    // The room for the pointer is still there after this: a page that can take the row as one more could have
    // kept it in its place.
    const Pointer body = AddRecordOf(row, kSlotBody);
    Page& page = file_->Change(place.home.page);
    if (!moved_before) {
        ResizeRecord(page, place.home.slot, kPointerSize);
        SetSlotFlags(page, place.home.slot, kSlotMoved);
    }
    PutU32(page.data() + RecordAt(*file_, place.home.page, page, place.home.slot).begin, body.Word());
    if (moved_before) Drop(place.body);
}

void TableSpace::Remove(const RowPlace& place) {
    if (place.body != place.home) Drop(place.body);
    Drop(place.home);
}

// Marks a slot deleted and squeezes its bytes out. The slot itself stays.
void TableSpace::Drop(Pointer at) {
    Page& page = file_->Change(at.page);
    CheckSlots(*file_, at.page, page);
    const std::uint16_t free_before = FreeBytes(*file_, at.page, page);
    ResizeRecord(page, at.slot, 0);
    SetSlotFlags(page, at.slot, kSlotDeleted);
    for (unsigned slot = 0; slot < SlotCount(page); ++slot) {
        if (RecordAt(*file_, at.page, page, slot).IsDeleted()) continue;
        const bool has_room_again =
            free_before < kNearlyFull && FreeBytes(*file_, at.page, page) >= kNearlyFull;
        if (has_room_again && HasMap(definition_->free_map)) {
            UsageMap(*file_, definition_->free_map).Add(at.page);
        }
        return;
    }
    ReleasePage(at.page);
}

void TableSpace::ReleasePage(PageNumber page) {
    if (HasMap(definition_->free_map)) UsageMap(*file_, definition_->free_map).Remove(page);
    UsageMap(*file_, definition_->owned_map).DropPage(page);
    ++releases_;
    if (page == last_page_) known_since_.reset();
}

}  // namespace tav::jet
