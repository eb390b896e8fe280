// A file that is read by position while others may read, replace or delete it; what is read is the file that
// was opened. What the system refuses is a Failure as in files.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/text.h"

namespace tav {

class SharedFile {
 public:
    explicit SharedFile(TextView path);
    ~SharedFile();
    SharedFile(SharedFile&&) noexcept;
    SharedFile& operator=(SharedFile&&) noexcept;

    // Reads `size` bytes, fewer where the file ends before; how many.
    std::size_t ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tav
