#include "jet/file/page_allocation.h"

#include <algorithm>

#include "common/concat.h"
#include "jet/file/global_map.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr PageNumber kSystemPages = 6;  // header, global map, definitions of the core tables: never free

Allocation& Known(PageFile& file) {
    Allocation& known = file.allocation();
    if (known.known_since == file.Rollbacks()) return known;
    const GlobalMap map(file);
    map.Check();
    PageSet in_use = known.find_pages_in_use == nullptr ? PageSet() : known.find_pages_in_use(file);
    for (const PageNumber bitmap : map.BitmapPages()) {
        if (in_use.Has(bitmap)) file.Damaged(bitmap, u"a bitmap of the map of free pages is used twice");
    }
    known.in_use = std::move(in_use);
    known.none_free_below = kSystemPages;
    known.known_since = file.Rollbacks();
    return known;
}

// The first page from there on that can be taken, or the page count.
PageNumber FindFree(const GlobalMap& map, const Allocation& known, PageNumber from, PageNumber end) {
    PageNumber page = map.FindFree(from);
    while (page < end && known.in_use.Has(page)) page = map.FindFree(page + 1);
    return page;
}

}  // namespace

PageNumber AllocatePage(PageFile& file, PageNumber above) {
    Allocation& known = Known(file);
    GlobalMap map(file);
    const bool lowest = above < known.none_free_below;
    const PageNumber from = lowest ? known.none_free_below : above + 1;
    const PageNumber free = FindFree(map, known, from, file.PageCount());
    if (lowest) known.none_free_below = free;
    if (free < file.PageCount()) {
        map.SetFree(free, false);
        file.Change(free).fill(0);
        return free;
    }
    map.Cover(file.PageCount());
    const PageNumber page = AppendPage(file);
    map.SetFree(page, false);
    return page;
}

void FreePage(PageFile& file, PageNumber page) {
    Allocation& known = Known(file);
    if (page < kSystemPages || page >= file.PageCount()) {
        file.Damaged(kGlobalPage, Concat(u"page ", Digits(page), u" cannot be freed"));
    }
    GlobalMap map(file);
    if (!map.Covers(page) && map.PagesToAppend() > 0) map.Cover(page);
    if (!map.Covers(page)) return;
    map.SetFree(page, true);
    known.in_use.Remove(page);
    known.none_free_below = std::min(known.none_free_below, page);
}

PageNumber PagesLeft(PageFile& file, PageNumber above, PageNumber most) {
    const Allocation& known = Known(file);
    const GlobalMap map(file);
    PageNumber count = std::min(map.PagesToAppend(), most);
    PageNumber page = std::max(above + 1, known.none_free_below);
    while (count < most && (page = FindFree(map, known, page, file.PageCount())) < file.PageCount()) {
        ++count;
        ++page;
    }
    return count;
}

}  // namespace tav::jet
