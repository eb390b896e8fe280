// The global free map: page 1, slot 0, an inline map from page 0 on in which a set bit means a free page.
// It grows in place by 4 bytes (32 pages) at a time, which moves the records of the later slots down.
#include <algorithm>
#include <cstring>

#include "common/failure.h"
#include "jet/file/bitmap.h"
#include "jet/file/data_page.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"

namespace tav::jet {
namespace {

constexpr PageNumber kGlobalPage = 1;
constexpr std::size_t kBitsAt = 5;
constexpr std::uint16_t kGrowth = 4;
constexpr PageNumber kSystemPages = 6;  // header, global map, definitions of the core tables: never free

struct FreeMap {
    std::size_t bits_at;  // in page 1
    PageNumber bits;
};

FreeMap FindFreeMap(PageFile& file) {
    const Page& page = ReadDataPage(file, kGlobalPage, kGlobalPage);
    const Record record = RecordAt(file, kGlobalPage, page, 0);
    const std::uint8_t* bytes = page.data() + record.begin;
    if (record.flags != 0 || record.size <= kBitsAt || bytes[0] != 0 || U32(bytes + 1) != 0) {
        file.Damaged(kGlobalPage, u"it holds no map of free pages");
    }
    return {record.begin + kBitsAt, static_cast<PageNumber>(record.size - kBitsAt) * 8};
}

// The map, long enough for the page.
FreeMap GrowFor(PageFile& file, PageNumber page) {
    FreeMap map = FindFreeMap(file);
    while (page >= map.bits) {
        CheckSlots(file, kGlobalPage, file.Read(kGlobalPage));
        if (page >= MaximumPages(file)) {
            throw Failure(
                Text(u"The database '").append(file.path()).append(u"' has reached its maximum size."));
        }
        Page& map_page = file.Change(kGlobalPage);
        const PageNumber old_bytes = map.bits / 8;
        ResizeRecord(map_page, 0, static_cast<std::uint16_t>(kBitsAt + old_bytes + kGrowth));
        map = FindFreeMap(file);
        std::memset(map_page.data() + map.bits_at + old_bytes, 0xFF, kGrowth);
    }
    return map;
}

void SetFree(PageFile& file, const FreeMap& map, PageNumber page, bool free) {
    SetBit(file.Change(kGlobalPage).data() + map.bits_at, page, free);
}

}  // namespace

PageNumber AllocatePage(PageFile& file, PageNumber above, const UsageMap* owned) {
    const FreeMap map = FindFreeMap(file);
    const PageNumber end = std::min(file.PageCount(), map.bits);
    const PageNumber first = std::max(above + 1, kSystemPages);
    const PageNumber free = FindBit(file.Read(kGlobalPage).data() + map.bits_at, first, end);
    const PageNumber taken = free < end ? free : file.PageCount();
    if (owned != nullptr && owned->Contains(taken)) {
        file.Damaged(taken, u"it is called free, but is in use");
    }
    if (free < end) {
        SetFree(file, map, free, false);
        file.Change(free).fill(0);
        return free;
    }
    const FreeMap grown = GrowFor(file, file.PageCount());
    const PageNumber page = file.Append();
    SetFree(file, grown, page, false);
    return page;
}

void FreePage(PageFile& file, PageNumber page) {
    const FreeMap map = FindFreeMap(file);
    if (page < kSystemPages || page >= map.bits || page >= file.PageCount()) {
        file.Damaged(kGlobalPage, Text(u"page ").append(Digits(page)).append(u" cannot be freed"));
    }
    SetFree(file, map, page, true);
}

bool IsFree(PageFile& file, PageNumber page) {
    const FreeMap map = FindFreeMap(file);
    return page >= map.bits || Bit(file.Read(kGlobalPage).data() + map.bits_at, page);
}

PageNumber CountFreePages(PageFile& file) {
    const FreeMap map = FindFreeMap(file);
    return CountBits(file.Read(kGlobalPage).data() + map.bits_at, std::min(file.PageCount(), map.bits));
}

PageNumber MaximumPages(PageFile& file) {
    const FreeMap map = FindFreeMap(file);
    const std::uint16_t room = FreeBytes(file, kGlobalPage, file.Read(kGlobalPage));
    return map.bits + room / kGrowth * kGrowth * 8;
}

}  // namespace tav::jet
