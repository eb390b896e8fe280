// The record of a usage map, a set of page numbers, in its two forms:
//
//     inline     +0  u8 0
//                +1  u32        the first page covered; any number
//                +5  bits       of the pages from there on
//     reference  +0  u8 1
//                +1  u32 x n    page numbers of bitmap pages; 0 = no page of that range is in the set
//
// Entry k of a reference map stands for the pages from k x 32,736 on. A bitmap page is 05 01 00 00 and the bits
// of its 32,736 pages. Records of maps lie on map pages, which are data pages of owner 0 (page 1: owner 1).
#pragma once

#include <optional>

#include "jet/file/data_page.h"
#include "jet/file/format.h"

namespace tav::jet {

inline constexpr std::size_t kInlineHead = 5;
inline constexpr std::size_t kBitmapHead = 4;
inline constexpr PageNumber kPagesPerBitmap = (kPageSize - kBitmapHead) * 8;
// 17 entries: 2 GB. The length of every reference map that is made, and the least one of a global inline map.
inline constexpr std::uint16_t kReferenceSize = 69;
inline constexpr PageNumber kGlobalPage = 1;  // the page of the file's own two maps

// A run of page numbers whose bits stand together.
struct MapSegment {
    PageNumber first = 0;
    PageNumber count = 0;
    PageNumber page = 0;   // where the bits are
    std::size_t bits = 0;  // their offset there
};

// A map's record as it stands at the moment; another view is made after it has changed its place or form.
class MapRecord {
 public:
    // A record that is no usage map is damage.
    MapRecord(PageFile& file, Pointer at);

    bool IsInline() const { return Bytes()[0] == 0; }
    std::uint16_t Size() const { return record_.size; }

    // The segments in ascending order; those of bitmap pages that do not exist have no value.
    std::size_t SegmentCount() const;
    std::optional<MapSegment> Segment(std::size_t index) const;
    // Where `page` belongs; SegmentCount() when it is past the last segment.
    std::size_t IndexOf(PageNumber page) const;
    std::optional<MapSegment> SegmentOf(PageNumber page) const;

    const std::uint8_t* Bits(const MapSegment& segment) const;
    bool Contains(PageNumber page) const;
    // The page is in one of the segments.
    void Set(PageNumber page, bool member) const;

    // Gives the record another length; bytes gained are undefined. False when its page has not that room and
    // `spare` bytes more.
    bool Resize(std::uint16_t size, std::uint16_t spare = 0);
    // Writes an inline record's head.
    void SetStart(PageNumber start) const;
    // Makes it a reference map without entries; false when its page lacks the room.
    bool MakeReferences();
    // Makes the page, which is all zero, the bitmap page of an entry.
    void SetBitmap(std::size_t entry, PageNumber page) const;

 private:
    PageFile* file_;
    Pointer at_;
    Record record_;

    const std::uint8_t* Bytes() const;
    std::uint8_t* Change() const;
};

}  // namespace tav::jet
