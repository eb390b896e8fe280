// The data pages of one owner, and the records on them: a table's rows, or the long values of a column.
//
// Pages are listed by a usage map; a second map, which a file may lack, holds those with room. A page whose
// last record is dropped goes back to the file; else what is cleared and filled again and again would grow for
// ever.
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "jet/file/data_page.h"

namespace tav::jet {

class PageFile;

class RecordSpace {
 public:
    enum class Order { Ascending, Any };

    // `owner` is what the pages say of themselves. With Order::Ascending records only go to the last page, or
    // to a new one with a higher number, so that a walk meets them in the order they came.
    RecordSpace(PageFile& file, std::uint32_t owner, Pointer owned_map, Pointer free_map, Order order)
        : file_(&file), owner_(owner), owned_map_(owned_map), free_map_(free_map), order_(order) {}

    bool Owns(PageNumber page) const;
    // Pages given back to the file since this was made.
    std::uint64_t releases() const { return releases_; }

    // The page that takes the next record if it has room, 0 for none; the last one with Order::Ascending.
    PageNumber OpenPage();
    // A record of at most a page's room; `flags` as in data_page.h.
    Pointer Add(std::string_view bytes, std::uint16_t flags);
    // Marks slots deleted and squeezes their bytes out. The slots themselves stay.
    void Drop(std::vector<Pointer> slots);

 private:
    PageNumber PageFor(std::size_t size);
    PageNumber Candidate() const;
    void DropFrom(PageNumber number, std::span<const Pointer> slots);
    void Release(PageNumber page);

    PageFile* file_;
    std::uint32_t owner_;
    Pointer owned_map_;
    Pointer free_map_;
    Order order_;
    std::uint64_t releases_ = 0;

    // At hand, so that a record costs the same in a large file as in a small one. Read again after a rollback.
    std::optional<std::uint64_t> known_since_;  // the file's count of rollbacks then
    PageNumber open_page_ = 0;                  // the one that takes the next record, 0 for none
    PageNumber sound_page_ = 0;                 // whose slots have been looked at
};

}  // namespace tav::jet
