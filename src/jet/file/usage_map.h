// Usage maps: sets of page numbers, each kept as a record of a map page; and the allocation of pages.
#pragma once

#include <vector>

#include "jet/file/format.h"

namespace tav::jet {

class PageFile;

// The set that the record at `record` holds, inline (type 0) or by bitmap pages (type 1). Adding a page that
// does not fit moves the inline window or turns the record into a reference map.
class UsageMap {
 public:
    UsageMap(PageFile& file, Pointer record) : file_(&file), record_(record) {}

    bool Contains(PageNumber page) const;
    void Add(PageNumber page);
    void Remove(PageNumber page);
    // Allocates a page for the owner of the set, adds it, and returns it.
    PageNumber TakePage(PageNumber above = 0);
    // Ascending.
    std::vector<PageNumber> Pages() const;
    // The highest page of the set, 0 when it is empty.
    PageNumber Last() const;
    // The pages that hold the map's own bitmaps (none when it is inline).
    std::vector<PageNumber> BitmapPages() const;

 private:
    struct View;
    PageFile* file_;
    Pointer record_;

    bool MoveWindow(PageNumber page);
    void TurnIntoReferences();
    void AddToBitmap(PageNumber page);
};

// Takes a page out of the file's global free map, or appends one; it is all zero. With `above`, only pages
// with a higher number are taken, so that rows stay in the order they were inserted. A page that is already
// one of `owned` is no free page, whatever the global map says: the file is damaged, and the page is left as
// it is.
PageNumber AllocatePage(PageFile& file, PageNumber above = 0, const UsageMap* owned = nullptr);
// Gives a page back to the global free map.
void FreePage(PageFile& file, PageNumber page);
// Whether the global map calls the page free.
bool IsFree(PageFile& file, PageNumber page);
// How many pages inside the file it calls free.
PageNumber CountFreePages(PageFile& file);
// How many pages the file may have at most: what the global map can grow to on its page (32,032 in a new
// file). Growing beyond is a Failure.
PageNumber MaximumPages(PageFile& file);

}  // namespace tav::jet
