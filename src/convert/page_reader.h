// A printed form, page by page, as plain text in which every frame's line tells the frame's position.
//
// In: the bytes of an RTF. The document is cut at every "\page", also inside a longer word; each page is wrapped into a
// document of its own (code page 1251, no font table) and converted for itself (rich_text.h). A page whose text begins
// after a brace, that is with "}" among the first ten characters left of the document, gets the group that this brace
// closes.
//
// Of a file no more is held than a piece of kPiece bytes and the page that is read. One that is longer than a piece is
// read twice: the number of its pages is known before the first of them. A reader may be used again for another
// document and keeps its buffers.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "convert/rich_text.h"
#include "platform/input_file.h"

namespace tav {

class PageReader {
 public:
    static constexpr std::size_t kPiece = std::size_t{128} << 10;
    // Room in the buffer for what is written before and after a page, which is read in its place.
    static constexpr std::size_t kAround = 64;

    // Begins with a document. The file lives until the last page is read; the bytes need not.
    void Open(InputFile& file);
    void Open(std::string_view document);

    // The number of bytes; that of "\page" and one.
    std::size_t size() const { return size_; }
    std::size_t pages() const { return pages_; }
    // Whether text remains; to be asked before each page. Only this and Open read the file.
    bool More();
    // The next page's text, Windows-1251 with CR LF; valid until the next call.
    std::string_view Next();
    // The document of its own that the page last read was made.
    std::string_view page() const { return page_; }
    // Whether the page last read had visible text after its outermost closing brace, where none shows.
    bool dropped_text() const { return converter_.dropped_text(); }
    // Whether the pages read so far end inside a group.
    bool inside_group() const { return open_groups_ > 0; }

 private:
    void Begin(InputFile* file, std::size_t piece);
    std::size_t Fill();
    void CountPages();
    void Uncover();

    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t begin_ = 0;  // of the document's bytes in the buffer that no page has shown
    std::size_t end_ = 0;
    InputFile* file_ = nullptr;  // none when nothing is left to read
    std::size_t size_ = 0;
    std::size_t pages_ = 0;

    std::size_t page_end_ = 0;  // of the page that More found, then of the one that Next showed
    std::string_view page_;
    std::string covered_;  // the bytes after its end

    RichText converter_;
    std::ptrdiff_t open_groups_ = 0;
};

}  // namespace tav
