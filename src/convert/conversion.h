// What a reader of documents makes of one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/failure.h"
#include "common/text.h"

namespace tav {

struct Conversion {
    // The document's entry in the catalogue, from <file> to the line end after </file>, as
    // Windows-1251. Empty when the document was rejected or could not be read, and after a cancel.
    std::string entry;
    // For a person: why there is no entry, or no part in it, where more is known than that nothing was
    // recognised.
    Text reason;
    std::optional<Failure> failure;  // why there is no entry, where that is to be shown
    bool unreadable = false;         // the file could not be opened or read
    bool cut_off = false;            // the text ends inside a group
    std::vector<std::size_t>
        dropped_pages;  // those that hide visible text after their last closing brace, from 1
};

// "форма.rtf, страницы 3, 4: текст за последней закрывающей скобкой не показан"; the first ten pages.
// Empty when there are none.
Text DroppedTextLine(TextView file_name, const std::vector<std::size_t>& pages);

// Whether a failure says that a file cannot be opened or read; and why, for a person.
bool IsAboutFile(const Failure& failure);
Text WhyUnreadable(const Failure& failure);
// What `read` makes of a file. One that cannot be opened or read is noted in the conversion, and a Failure.
template <class Read>
auto Noting(Conversion& conversion, Read&& read) {
    try {
        return std::forward<Read>(read)();
    } catch (const Failure& failure) {
        conversion.unreadable = true;
        conversion.reason = WhyUnreadable(failure);
        throw;
    }
}

}  // namespace tav
