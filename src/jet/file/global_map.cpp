#include "jet/file/global_map.h"

#include <algorithm>

#include "common/concat.h"
#include "common/database_failure.h"
#include "jet/file/bitmap.h"
#include "jet/file/header.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr std::uint16_t kGrowth = 4;  // bytes by which an inline map grows
constexpr std::uint16_t kSpare = 4;   // bytes of page 1 that stay free
constexpr PageNumber kPagesPerGrowth = kGrowth * 8;
constexpr PageNumber kRanges = (kMaximumPages + kPagesPerBitmap - 1) / kPagesPerBitmap;

Pointer OnPageOne(const PageFile& file, Pointer map) {
    if (map.page != kGlobalPage) file.Damaged(0, u"it does not say where the map of free pages is");
    return map;
}

[[noreturn]] void Full(const PageFile& file) {
    throw DatabaseFailure(Concat(u"The database '", file.path(), u"' has reached its maximum size."));
}

}  // namespace

GlobalMap::GlobalMap(PageFile& file)
    : file_(&file),
      at_(OnPageOne(file, FindGlobalMaps(file.Read(0).data()).free)),
      free_(file, at_),
      released_(file, OnPageOne(file, FindGlobalMaps(file.Read(0).data()).released)) {}

std::vector<PageNumber> GlobalMap::BitmapPages() const {
    std::vector<PageNumber> pages;
    for (const MapRecord* map : {&free_, &released_}) {
        if (map->IsInline()) continue;
        for (std::size_t i = 0; i < map->SegmentCount(); ++i) {
            if (const std::optional<MapSegment> segment = map->Segment(i)) pages.push_back(segment->page);
        }
    }
    return pages;
}

void GlobalMap::Check() const {
    for (const MapRecord* map : {&free_, &released_}) {
        if (!map->IsInline() && map->Size() != kReferenceSize) {
            file_->Damaged(kGlobalPage, u"one of its maps is a reference map of a wrong length");
        }
    }
    std::vector<PageNumber> bitmaps = BitmapPages();
    std::sort(bitmaps.begin(), bitmaps.end());
    for (std::size_t i = 0; i < bitmaps.size(); ++i) {
        if (i > 0 && bitmaps[i] == bitmaps[i - 1]) file_->Damaged(bitmaps[i], u"two ranges have this bitmap");
        if (free_.Contains(bitmaps[i])) {
            file_->Damaged(bitmaps[i], u"it is called free, but is a bitmap of the map of free pages");
        }
    }
}

PageNumber GlobalMap::FindFree(PageNumber from) const {
    const PageNumber file_end = file_->PageCount();
    for (std::size_t i = free_.IndexOf(from); i < free_.SegmentCount(); ++i) {
        const std::optional<MapSegment> segment = free_.Segment(i);
        if (!segment || segment->first >= file_end) continue;
        const PageNumber end = std::min(segment->count, file_end - segment->first);
        const std::uint8_t* bits = free_.Bits(*segment);
        PageNumber at = from > segment->first ? from - segment->first : 0;
        for (at = FindBit(bits, at, end); at < end; at = FindBit(bits, at + 1, end)) {
            if (!released_.Contains(segment->first + at)) return segment->first + at;
        }
    }
    return file_end;
}

bool GlobalMap::CanConvert() const {
    const Page& page = file_->Read(kGlobalPage);
    return free_.Size() + FreeBytes(*file_, kGlobalPage, page) >= kReferenceSize;
}

PageNumber GlobalMap::PagesToAppend() const {
    const PageNumber count = file_->PageCount();
    const auto up_to = [&](PageNumber end) { return end > count ? end - count : 0; };
    PageNumber bitmaps = kRanges;  // that are still to be made
    if (!free_.IsInline()) {
        bitmaps = 0;
        for (std::size_t i = free_.IndexOf(count); i < kRanges; ++i) bitmaps += free_.Segment(i) ? 0 : 1;
    } else if (!CanConvert()) {
        const std::uint16_t room = FreeBytes(*file_, kGlobalPage, file_->Read(kGlobalPage));
        const int bytes = free_.Size() + std::max(room - kSpare, 0) - static_cast<int>(kInlineHead);
        return up_to(static_cast<PageNumber>(bytes) / kGrowth * kPagesPerGrowth);
    }
    const PageNumber pages = up_to(kMaximumPages);
    return pages - std::min(pages, bitmaps);
}

void GlobalMap::Cover(PageNumber page) {
    if (free_.IsInline()) {
        if (Covers(page) || Lengthen(page)) return;
        Convert();
    }
    for (std::size_t next = free_.IndexOf(file_->PageCount()); !free_.Segment(next);
         next = free_.IndexOf(file_->PageCount())) {
        AddBitmap(next);
    }
    if (const std::size_t entry = free_.IndexOf(page); !free_.Segment(entry)) AddBitmap(entry);
}

// Makes an inline map reach from page 0 to that page, also one that began later. What it did not cover is in
// use as far as it exists.
bool GlobalMap::Lengthen(PageNumber page) {
    const MapSegment old = *free_.Segment(0);
    const PageNumber file_end = file_->PageCount();
    const PageNumber old_end = old.first > file_end ? 0 : old.first + old.count;
    const PageNumber end = std::max(page + 1, std::min(old_end, file_end));
    const std::size_t needed = kInlineHead + kGrowth * ((end - 1) / kPagesPerGrowth + std::size_t{1});
    const std::size_t size = std::max<std::size_t>({needed, free_.Size(), kReferenceSize});
    std::vector<bool> was_free(old_end);
    for (PageNumber at = old.first; at < old_end; ++at) was_free[at] = Bit(free_.Bits(old), at - old.first);
    if (size > kPageSize || !free_.Resize(static_cast<std::uint16_t>(size), kSpare)) return false;
    free_.SetStart(0);
    const PageNumber kept = old.first == 0 ? old_end : 0;
    for (PageNumber at = kept; at < free_.Segment(0)->count; ++at) {
        SetFree(at, at < old_end ? was_free[at] : at >= file_end);
    }
    *this = GlobalMap(*file_);
    return true;
}

void GlobalMap::Convert() {
    if (!CanConvert()) Full(*file_);
    const MapSegment old = *free_.Segment(0);
    std::vector<PageNumber> free;
    for (PageNumber at = FindBit(free_.Bits(old), 0, old.count); at < old.count;
         at = FindBit(free_.Bits(old), at + 1, old.count)) {
        if (std::uint64_t{old.first} + at < file_->PageCount()) free.push_back(old.first + at);
    }
    free_.MakeReferences();
    for (std::size_t entry = 0; entry * kPagesPerBitmap < file_->PageCount(); ++entry) AddBitmap(entry);
    for (const PageNumber page : free) SetFree(page, true);
    *this = GlobalMap(*file_);
}

void GlobalMap::AddBitmap(std::size_t entry) {
    const PageNumber page = AppendPage(*file_);
    free_.SetBitmap(entry, page);
    const MapSegment segment = *free_.Segment(entry);
    std::uint8_t* bits = file_->Change(page).data() + segment.bits;
    for (PageNumber at = 0; at < segment.count; ++at) {
        SetBit(bits, at, segment.first + at >= file_->PageCount());
    }
    if (Covers(page)) SetFree(page, false);
}

PageNumber AppendPage(PageFile& file) {
    if (file.PageCount() >= kMaximumPages) Full(file);
    return file.Append();
}

}  // namespace tav::jet
