// The bytes of a catalogue, read in pieces: it grows to hundreds of megabytes, of which one entry at a time is
// looked at.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "common/text.h"
#include "platform/shared_file.h"

namespace tav {

// Those of a file, as it was when it was opened, or those of a text.
class CatalogueBytes {
 public:
    static CatalogueBytes OfFile(TextView path);
    static CatalogueBytes OfText(std::string text);

    // Reads those from `begin` on, `size` of them; fewer where the catalogue ends before. How many.
    std::size_t Read(std::size_t begin, char* to, std::size_t size) const;
    // The same, appended.
    void Append(std::string& to, std::size_t begin, std::size_t size) const;

 private:
    std::optional<SharedFile> file_;
    std::string text_;
};

// A part of them that goes on to the end.
class CatalogueWindow {
 public:
    explicit CatalogueWindow(const CatalogueBytes& bytes) : bytes_(bytes) { ReadOn(0); }

    std::string_view text() const { return {buffer_.data(), size_}; }
    // Where the text begins in the catalogue.
    std::size_t begin() const { return begin_; }
    // Lets the text before `at` go, and doubles what is left of it at least. False at the catalogue's end.
    bool ReadOn(std::size_t at);

 private:
    const CatalogueBytes& bytes_;
    std::string buffer_;  // the text, and what is free after it
    std::size_t size_ = 0;
    std::size_t begin_ = 0;
};

// Numbers its lines, from 1, as far as they are asked for.
class CatalogueLines {
 public:
    explicit CatalogueLines(const CatalogueBytes& bytes) : bytes_(bytes) {}

    // The line of a place that is not before the one asked for last.
    int At(std::size_t place);

 private:
    const CatalogueBytes& bytes_;
    std::size_t at_ = 0;
    int line_ = 1;
};

}  // namespace tav
