#include "jet/file/usage_map.h"

#include <algorithm>
#include <utility>

#include "common/concat.h"
#include "jet/file/bitmap.h"
#include "jet/file/map_record.h"
#include "jet/file/page_allocation.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

// The page that a set bit of the map means.
PageNumber InFile(const PageFile& file, Pointer record, PageNumber first, PageNumber at) {
    const PageNumber page = first + at;
    if (page < first || page >= file.PageCount()) {
        file.Damaged(record.page, Concat(u"the usage map of slot ", Digits(record.slot),
                                         u" lists a page beyond the end of the file"));
    }
    return page;
}

std::vector<MapSegment> Segments(const MapRecord& map) {
    std::vector<MapSegment> segments;
    for (std::size_t i = 0; i < map.SegmentCount(); ++i) {
        if (const std::optional<MapSegment> segment = map.Segment(i)) segments.push_back(*segment);
    }
    return segments;
}

}  // namespace

bool UsageMap::Contains(PageNumber page) const {
    return MapRecord(*file_, record_).Contains(page);
}

bool UsageMap::AddInPlace(PageNumber page) {
    const MapRecord map(*file_, record_);
    if (!map.SegmentOf(page) && !(map.IsInline() && MoveWindow(page))) return false;
    map.Set(page, true);
    return true;
}

void UsageMap::Add(PageNumber page) {
    if (AddInPlace(page)) return;
    if (MapRecord(*file_, record_).IsInline()) TurnIntoReferences();
    const MapRecord map(*file_, record_);
    if (!map.SegmentOf(page)) {
        const std::size_t entry = map.IndexOf(page);
        if (entry == map.SegmentCount()) {
            file_->Damaged(record_.page, u"a usage map is too short for the file");
        }
        map.SetBitmap(entry, AllocatePage(*file_));
    }
    map.Set(page, true);
}

// Starts the inline bitmap at another page so that it covers its set and `page`; false when it is too short.
bool UsageMap::MoveWindow(PageNumber page) {
    const MapRecord map(*file_, record_);
    const std::vector<PageNumber> pages = Pages();
    const PageNumber first = pages.empty() ? page : std::min(page, pages.front());
    const PageNumber last = pages.empty() ? page : std::max(page, pages.back());
    const PageNumber start = first / 8 * 8;
    if (last - start >= map.Segment(0)->count) return false;
    for (const PageNumber member : pages) map.Set(member, false);
    map.SetStart(start);
    for (const PageNumber member : pages) map.Set(member, true);
    return true;
}

// The bitmap pages are allocated first: the set is whole in the file at any moment.
void UsageMap::TurnIntoReferences() {
    const std::vector<PageNumber> pages = Pages();
    std::vector<std::pair<std::size_t, PageNumber>> bitmaps;
    for (const PageNumber page : pages) {
        const std::size_t entry = page / kPagesPerBitmap;
        if (bitmaps.empty() || bitmaps.back().first != entry) {
            bitmaps.emplace_back(entry, AllocatePage(*file_));
        }
    }
    MapRecord map(*file_, record_);
    if (!map.MakeReferences()) file_->Damaged(record_.page, u"a usage map is too short for the file");
    for (const auto& [entry, page] : bitmaps) map.SetBitmap(entry, page);
    for (const PageNumber page : pages) map.Set(page, true);
}

PageNumber UsageMap::TakePage(PageNumber above) {
    const PageNumber page = AllocatePage(*file_, above);
    Add(page);
    return page;
}

void UsageMap::Remove(PageNumber page) {
    const MapRecord map(*file_, record_);
    if (map.Contains(page)) map.Set(page, false);
}

void UsageMap::DropPage(PageNumber page) {
    FreePage(*file_, page);
    Remove(page);
}

std::vector<PageNumber> UsageMap::Pages() const {
    const MapRecord map(*file_, record_);
    std::vector<PageNumber> pages;
    for (const MapSegment& segment : Segments(map)) {
        const std::uint8_t* bits = map.Bits(segment);
        const PageNumber count = segment.count;
        for (PageNumber at = FindBit(bits, 0, count); at < count; at = FindBit(bits, at + 1, count)) {
            pages.push_back(InFile(*file_, record_, segment.first, at));
        }
    }
    return pages;
}

std::optional<PageNumber> UsageMap::JoinInto(PageSet& pages) const {
    const MapRecord map(*file_, record_);
    for (const MapSegment& segment : Segments(map)) {
        const std::uint8_t* bits = map.Bits(segment);
        const PageNumber count = segment.count;
        if (pages.Join(bits, count / 8, segment.first)) continue;
        for (PageNumber at = FindBit(bits, 0, count); at < count; at = FindBit(bits, at + 1, count)) {
            const PageNumber page = InFile(*file_, record_, segment.first, at);
            if (!pages.Add(page)) return page;
        }
    }
    return std::nullopt;
}

PageNumber UsageMap::Last() const {
    const MapRecord map(*file_, record_);
    for (std::size_t i = map.SegmentCount(); i-- > 0;) {
        const std::optional<MapSegment> segment = map.Segment(i);
        if (!segment) continue;
        const PageNumber at = FindLastBit(map.Bits(*segment), segment->count);
        if (at != segment->count) return InFile(*file_, record_, segment->first, at);
    }
    return 0;
}

std::vector<PageNumber> UsageMap::BitmapPages() const {
    const MapRecord map(*file_, record_);
    std::vector<PageNumber> pages;
    if (map.IsInline()) return pages;
    for (const MapSegment& segment : Segments(map)) pages.push_back(segment.page);
    return pages;
}

}  // namespace tav::jet
