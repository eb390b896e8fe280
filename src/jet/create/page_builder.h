// Pages of a file that is being made from nothing: data pages, map records, index leaves.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "jet/file/format.h"

namespace tav::jet {

// A data page, filled from its end downwards. The records of a page of usage maps have the owner 0.
class DataPage {
 public:
    explicit DataPage(std::uint32_t owner);

    // Adds a record; its slot. A Failure when the page has no room for it.
    std::uint8_t Add(std::string_view record);
    const Page& page() const { return page_; }

 private:
    Page page_{};
};

// An inline usage map that covers the first 512 pages and
// holds those from `first` up to, not including, `end`.
std::string MapRecord(PageNumber first, PageNumber end);

// The one leaf of a small index. `entries` are in byte order. A Failure when they do not fit.
Page LeafPage(std::uint32_t owner, std::span<const std::string> entries);

}  // namespace tav::jet
