// A printed form, page by page, as plain text in which every frame's line tells the frame's position.
//
// In: the bytes of an RTF. Every "\posx" becomes " posx": the space ends the control word before it, and the
// position becomes the first visible text of the frame's line. The document is cut at every "\page", also
// inside a longer word; each page is wrapped into a document of its own (code page 1251, no font table) and
// converted for itself. A page whose text begins after a brace, that is with "}" among the first ten
// characters left of the document, gets the group that this brace closes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "convert/rich_text.h"

namespace tav {

class PageReader {
 public:
    explicit PageReader(std::string document);
    PageReader(const PageReader&) = delete;
    PageReader& operator=(const PageReader&) = delete;

    // The number of "\page" and one.
    std::size_t pages() const { return page_ends_.size() + 1; }
    // Whether text remains.
    bool More() const { return !rest_.empty(); }
    // The next page's text, Windows-1251 with CR LF; valid until the next call.
    std::string_view Next();
    // The document of its own that the page last read was made.
    std::string_view page() const { return page_; }
    // Whether the page last read had visible text after its outermost closing brace, where none shows.
    bool dropped_text() const { return converter_.dropped_text(); }
    // Whether the pages read so far end inside a group.
    bool inside_group() const { return open_groups_ > 0; }

 private:
    std::string document_;
    std::string_view rest_;
    std::vector<std::size_t> page_ends_;  // where each "\page" begins
    std::size_t next_page_ = 0;
    std::string page_;
    RichText converter_;
    std::ptrdiff_t open_groups_ = 0;
};

}  // namespace tav
