// Takes pages out of the file's map of free pages, or appends them, and gives them back (global_map.h).
//
// The map may be wrong: other programs write it too, and some drop a part of it. Before the first allocation
// on an open file, and again after a rollback, the pages that tables, indexes and long values use are joined;
// none of them is ever taken, whatever the map says. Maps that contradict each other are damage, named by page.
#pragma once

#include <cstdint>
#include <optional>

#include "jet/file/page_set.h"

namespace tav::jet {

class PageFile;

// What is kept for this with an open file.
struct Allocation {
    // Joins the maps of all tables. Whoever knows the catalogue sets it (pages_in_use.h).
    PageSet (*find_pages_in_use)(PageFile& file) = nullptr;

    std::optional<std::uint64_t> known_since;  // the file's count of rollbacks when the rest was found
    PageSet in_use;
    PageNumber none_free_below = 0;
};

// A page that is all zero. With `above`, only pages with a higher number are taken, so that rows stay in the
// order they were inserted. A Failure when the file has reached its maximum size.
PageNumber AllocatePage(PageFile& file, PageNumber above = 0);

// Gives a page back. The caller's map still lists it. In a full file a page that the map of free pages does not
// cover, and cannot be made to cover, stays out of use.
void FreePage(PageFile& file, PageNumber page);

// How many pages AllocatePage can give, one after another with that `above`; the count ends at `most`.
PageNumber PagesLeft(PageFile& file, PageNumber above, PageNumber most);

}  // namespace tav::jet
