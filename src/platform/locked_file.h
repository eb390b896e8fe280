// An open file, read and written by position. The lock is taken when the file is opened and held until it is
// closed: readers share it, a writer has it alone. A file that somebody else holds is "Permission denied" at
// once. On Linux the lock is of both kinds, of the whole file and of all its bytes, those beyond the end too:
// a file server shows the latter to its clients. What else the system refuses is a Failure as in files.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/text.h"

namespace tav {

class LockedFile {
 public:
    enum class Access { Read, Write };

    LockedFile(TextView path, Access access);
    // A file without a name in the folder of `beside`, for what memory should not hold; it is gone when it is
    // closed, after a kill too.
    static LockedFile Temporary(TextView beside);
    ~LockedFile();
    LockedFile(LockedFile&&) noexcept;
    LockedFile& operator=(LockedFile&&) noexcept;

    std::uint64_t Size() const;
    // Reads exactly `size` bytes; a file that ends before is "Path/File access error".
    void ReadAt(std::uint64_t offset, void* buffer, std::size_t size) const;
    void WriteAt(std::uint64_t offset, const void* buffer, std::size_t size);
    void Truncate(std::uint64_t size);
    // What was written is on the disk when this returns.
    void Sync();
    // A reader becomes the only holder for a while (to roll
    // back what a killed writer left); false when others read.
    bool TryExclusive();

 private:
    struct State;
    LockedFile();
    std::unique_ptr<State> state_;
};

}  // namespace tav
