// Pages of a unit of work that memory should not hold until it ends: in a file without a name beside the
// database. It is made with the first page.
#pragma once

#include <optional>

#include "common/text.h"
#include "jet/file/format.h"
#include "platform/locked_file.h"

namespace tav::jet {

class SpillFile {
 public:
    using Place = std::uint32_t;

    explicit SpillFile(TextView database_path) : database_path_(database_path) {}

    // Gives the page's bytes a place.
    Place Put(const Page& bytes);
    void PutAgain(Place place, const Page& bytes);
    void Get(Place place, Page& bytes) const;
    // All places are free again.
    void Clear();

 private:
    Text database_path_;
    std::optional<LockedFile> file_;
    Place used_ = 0;
};

}  // namespace tav::jet
