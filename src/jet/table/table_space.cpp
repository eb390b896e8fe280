// Where the rows of a table go: its last page, in the order they come.
#include <algorithm>

#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/table/table.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kNearlyFull = 200;  // free bytes below which a page leaves the map of pages with room
constexpr std::uint16_t kPointerSize = 4;   // what is left of a moved row
constexpr std::size_t kSlotSize = 2;

bool HasMap(Pointer map) {
    return map.page != 0;
}

}  // namespace

// The page for one row more: the last one, or a new one with a higher number, so that a scan meets rows in
// the order they were inserted.
PageNumber Table::PageFor(std::size_t size) {
    UsageMap owned(*file_, definition_.owned_map);
    if (known_since_ != file_->Rollbacks()) {
        last_page_ = owned.Last();
        known_since_ = file_->Rollbacks();
    }
    if (last_page_ != 0) {
        const Page& page = ReadDataPage(*file_, last_page_, definition_.page);
        const bool has_room = FreeBytes(*file_, last_page_, page) >= size + kSlotSize;
        if (has_room && SlotCount(page) < kMaximumSlots) return last_page_;
    }
    const PageNumber fresh = owned.TakePage(last_page_);
    InitializeDataPage(file_->Change(fresh), definition_.page);
    if (HasMap(definition_.free_map)) UsageMap(*file_, definition_.free_map).Add(fresh);
    last_page_ = fresh;
    return fresh;
}

// Puts row_bytes_ behind the table's last row.
Pointer Table::AddRow(std::uint16_t flags) {
    const PageNumber number = PageFor(row_bytes_.size());
    Page& page = file_->Change(number);
    const std::uint8_t slot = AddRecord(page, RowBytes(), flags);
    if (FreeBytes(*file_, number, page) < kNearlyFull && HasMap(definition_.free_map)) {
        UsageMap(*file_, definition_.free_map).Remove(number);
    }
    return {number, slot};
}

std::span<const std::uint8_t> Table::RowBytes() const {
    return {reinterpret_cast<const std::uint8_t*>(row_bytes_.data()), row_bytes_.size()};
}

// Puts row_bytes_ in the place of a row: where its bytes are when they fit, else elsewhere with a pointer
// left behind.
void Table::ReplaceRow(const Place& place) {
    const std::span<const std::uint8_t> bytes = RowBytes();
    const auto room_for = [&](Pointer at, std::size_t old_size, std::size_t size) {
        const Page& page = file_->Read(at.page);
        CheckSlots(*file_, at.page, page);
        return size <= old_size + FreeBytes(*file_, at.page, page);
    };
    if (room_for(place.body, place.record.size, bytes.size())) {
        Page& page = file_->Change(place.body.page);
        ResizeRecord(page, place.body.slot, static_cast<std::uint16_t>(bytes.size()));
        const Record record = RecordAt(*file_, place.body.page, page, place.body.slot);
        std::copy(bytes.begin(), bytes.end(), page.begin() + record.begin);
        return;
    }
    const bool moved_before = place.body != place.home;
    if (!moved_before && !room_for(place.home, place.record.size, kPointerSize)) {
        throw Failure(u"Record is too large.").In(definition_.name);
    }
    // The room for the pointer is still there after this: a page that can take the row as one more could have
    // kept it in its place.
    const Pointer body = AddRow(kSlotBody);
    Page& page = file_->Change(place.home.page);
    if (!moved_before) {
        ResizeRecord(page, place.home.slot, kPointerSize);
        SetSlotFlags(page, place.home.slot, kSlotMoved);
    }
    PutU32(page.data() + RecordAt(*file_, place.home.page, page, place.home.slot).begin, body.Word());
    if (moved_before) DropRow(place.body);
}

// Marks a slot deleted and squeezes its bytes out. The slot itself stays.
void Table::DropRow(Pointer at) {
    Page& page = file_->Change(at.page);
    CheckSlots(*file_, at.page, page);
    const std::uint16_t free_before = FreeBytes(*file_, at.page, page);
    ResizeRecord(page, at.slot, 0);
    SetSlotFlags(page, at.slot, kSlotDeleted);
    for (unsigned slot = 0; slot < SlotCount(page); ++slot) {
        if (RecordAt(*file_, at.page, page, slot).IsDeleted()) continue;
        const bool has_room_again =
            free_before < kNearlyFull && FreeBytes(*file_, at.page, page) >= kNearlyFull;
        if (has_room_again && HasMap(definition_.free_map)) {
            UsageMap(*file_, definition_.free_map).Add(at.page);
        }
        return;
    }
    ReleasePage(at.page);
}

// Gives an emptied page back to the file: only pages behind the last one take new rows, so a table that is
// cleared and filled again and again would grow for ever.
void Table::ReleasePage(PageNumber page) {
    UsageMap(*file_, definition_.owned_map).Remove(page);
    if (HasMap(definition_.free_map)) UsageMap(*file_, definition_.free_map).Remove(page);
    FreePage(*file_, page);
    ++releases_;
    if (page == last_page_) known_since_.reset();
}

}  // namespace tav::jet
