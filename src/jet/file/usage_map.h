// Usage maps of tables, indexes and long values: the pages that belong to each (map_record.h).
#pragma once

#include <optional>
#include <vector>

#include "jet/file/format.h"
#include "jet/file/page_set.h"

namespace tav::jet {

class MapRecord;
class PageFile;

// The set that the record at `record` holds. An inline record that cannot take a page moves its window; when
// the set is too wide for it, it becomes a reference map, of 69 bytes whatever its length was.
class UsageMap {
 public:
    UsageMap(PageFile& file, Pointer record) : file_(&file), record_(record) {}

    bool Contains(PageNumber page) const;
    void Add(PageNumber page);
    // The same if it takes no page of the file; whether it did.
    bool AddInPlace(PageNumber page);
    void Remove(PageNumber page);
    // Allocates a page for the owner of the set, adds it, and returns it (page_allocation.h).
    PageNumber TakePage(PageNumber above = 0);
    // Removes a page of the set and gives it back to the file.
    void DropPage(PageNumber page);
    // Ascending. A page beyond the end of the file is damage.
    std::vector<PageNumber> Pages() const;
    // Adds all pages to another set, which has a place for each page of the file. The first of them that was in it
    // already, where there is one, ends it.
    std::optional<PageNumber> JoinInto(PageSet& pages) const;
    // The highest page of the set, 0 when it is empty.
    PageNumber Last() const;
    // The pages that hold the map's own bitmaps (none when it is inline).
    std::vector<PageNumber> BitmapPages() const;

 private:
    PageFile* file_;
    Pointer record_;

    bool MoveWindow(PageNumber page);
    void TurnIntoReferences();
};

}  // namespace tav::jet
