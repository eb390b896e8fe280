#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix_linux.h"
#include "platform/shared_file.h"

namespace tav {

struct SharedFile::State {
    posix::Descriptor file;
    Text path;
};

SharedFile::SharedFile(TextView path) : state_(std::make_unique<State>()) {
    state_->path = path;
    state_->file = posix::Descriptor(::open(ToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC));
    if (!state_->file) posix::Refuse(errno, path);
    struct stat status {};
    if (::fstat(state_->file.number(), &status) == 0 && S_ISDIR(status.st_mode))
        throw Failure(RunTimeError::PathFileAccess, path);
}

SharedFile::~SharedFile() = default;
SharedFile::SharedFile(SharedFile&&) noexcept = default;
SharedFile& SharedFile::operator=(SharedFile&&) noexcept = default;

std::size_t SharedFile::ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const {
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t got = ::pread(state_->file.number(), buffer + filled, size - filled,
                                    static_cast<off_t>(offset + filled));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) posix::Refuse(errno, state_->path);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

}  // namespace tav
