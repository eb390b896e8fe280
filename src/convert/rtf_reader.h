// The reader of printed forms as any thread may use it: a file in, a conversion out. It shows nothing, and nothing of
// it is shared.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "common/text.h"
#include "convert/conversion.h"
#include "convert/page_reader.h"

namespace tav {

// Who is told of the steps of a reading: each page is one when it is converted and one when its lines are read.
class ReadingSteps {
 public:
    virtual ~ReadingSteps() = default;
    virtual void Begin(std::size_t pages) = 0;
    // Before each step; false ends the reading.
    virtual bool GoOn() = 0;
    virtual void Step() = 0;
};

class RtfReader {
 public:
    // Reads `folder` (which ends with the path separator) + `file_name`. What was ended has no entry, nor has what
    // failed; the failure, which names the document, is in the conversion.
    Conversion Read(TextView folder, TextView file_name, ReadingSteps& steps);

 private:
    void ReadFile(const Text& path, TextView file_name, ReadingSteps& steps, Conversion& conversion);

    std::optional<PageReader> pages_;  // for one document after the other
    std::string text_;
};

}  // namespace tav
