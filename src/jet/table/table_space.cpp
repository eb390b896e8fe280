#include "jet/table/table_space.h"

#include <algorithm>

#include "common/failure.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kPointerSize = 4;  // what is left of a moved row

}  // namespace

TableSpace::TableSpace(PageFile& file, const TableDefinition& table)
    : file_(&file),
      table_(&table),
      pages_(file, table.page, table.owned_map, table.free_map, RecordSpace::Order::Ascending) {}

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
        std::ranges::copy(row, page.begin() + record.begin);
        return;
    }
    const bool moved_before = place.body != place.home;
    if (!moved_before && !room_for(place.home, place.record.size, kPointerSize)) {
        throw Failure(u"Record is too large.").In(table_->name);
    }
    // The room for the pointer is still there after this: a page that can take the row as one more could have
    // kept it in its place.
    const Pointer body = pages_.Add(row, kSlotBody);
    Page& page = file_->Change(place.home.page);
    if (!moved_before) {
        ResizeRecord(page, place.home.slot, kPointerSize);
        SetSlotFlags(page, place.home.slot, kSlotMoved);
    }
    PutU32(page.data() + RecordAt(*file_, place.home.page, page, place.home.slot).begin, body.Word());
    if (moved_before) pages_.Drop({place.body});
}

}  // namespace tav::jet
