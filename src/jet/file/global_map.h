// The file's own two maps, records of page 1 that the header points to:
//
//     free      a set bit means a page that nobody uses
//     released  pages freed by a session of another program that has not ended; they are not taken
//
// Both have the forms of map_record.h. Pages that exist and that the free map does not cover count as used.
// The map grows with the file: inline by 4 bytes (32 pages) at a time while 4 bytes of page 1 stay free, which
// in a file that was never anything else is up to page 31,999. Then it becomes a reference map. The page that
// comes next becomes the bitmap of range 0, and so on for every range that the file has; later the first page
// of a range, 32,736 x k, becomes that range's bitmap. Bits of pages beyond the end of the file are set.
// Bitmap pages of the free map belong to nobody else and are not free.
#pragma once

#include <vector>

#include "jet/file/map_record.h"

namespace tav::jet {

// 2 GB are 524,288 pages. 17 fewer are used, so that bitmap pages never lack their place.
inline constexpr PageNumber kMaximumPages = 524288 - 17;

// A view like MapRecord: it is made anew for each use.
class GlobalMap {
 public:
    explicit GlobalMap(PageFile& file);

    // Refuses maps that contradict themselves: a bitmap page that serves twice or is called free, a reference
    // map of another length.
    void Check() const;

    bool Covers(PageNumber page) const { return free_.SegmentOf(page).has_value(); }
    // The first free page from there on, or the file's page count when there is none.
    PageNumber FindFree(PageNumber from) const;
    void SetFree(PageNumber page, bool free) const { free_.Set(page, free); }
    // Makes the map cover a page of the file, or the one that comes next (which may be a later one after this).
    void Cover(PageNumber page);
    // How many pages can be appended.
    PageNumber PagesToAppend() const;
    // The pages that the maps' own bitmaps take.
    std::vector<PageNumber> BitmapPages() const;

 private:
    PageFile* file_;
    Pointer at_;
    MapRecord free_;
    MapRecord released_;

    bool CanConvert() const;
    bool Lengthen(PageNumber page);
    void Convert();
    void AddBitmap(std::size_t entry);
};

// One page more at the end; a file that is as large as it may be is a Failure.
PageNumber AppendPage(PageFile& file);

}  // namespace tav::jet
