#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <string>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/locked_file.h"
#include "platform/posix_linux.h"
#include "platform/temporary_name.h"

namespace tav {

using posix::Descriptor;
using posix::Refuse;

namespace {

// All bytes of the file, for this open file. A file system may have no such locks.
void LockRange(const Descriptor& file, short type, TextView path) {
    struct flock range {};
    range.l_type = type;
    if (::fcntl(file.number(), F_OFD_SETLK, &range) == 0) return;
    if (errno == EAGAIN || errno == EACCES) Refuse(EWOULDBLOCK, path);
}

}  // namespace

struct LockedFile::State {
    Descriptor file;
    Text path;
};

LockedFile::LockedFile(TextView path, Access access) : state_(std::make_unique<State>()) {
    state_->path = path;
    const int mode = access == Access::Write ? O_RDWR : O_RDONLY;
    // Without waiting: a pipe of that name has no other end.
    state_->file = Descriptor(::open(ToUtf8(path).c_str(), mode | O_NONBLOCK | O_CLOEXEC));
    if (!state_->file) Refuse(errno, path);
    struct stat status {};
    if (::fstat(state_->file.number(), &status) != 0) Refuse(errno, path);
    if (!S_ISREG(status.st_mode)) throw Failure(RunTimeError::PathFileAccess, path);
    if (::flock(state_->file.number(), (access == Access::Write ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0)
        Refuse(errno, path);
    LockRange(state_->file, access == Access::Write ? F_WRLCK : F_RDLCK, path);
}

LockedFile::LockedFile() : state_(std::make_unique<State>()) {}

LockedFile LockedFile::Temporary(TextView beside) {
    LockedFile made;
    made.state_->path = FolderOf(beside).append(kTemporaryName);
    std::string native = ToUtf8(made.state_->path) + std::string(6, 'X');
    made.state_->file = Descriptor(::mkostemp(native.data(), O_CLOEXEC));
    if (!made.state_->file) Refuse(errno, made.state_->path);
    ::unlink(native.c_str());
    return made;
}

LockedFile::~LockedFile() = default;
LockedFile::LockedFile(LockedFile&&) noexcept = default;
LockedFile& LockedFile::operator=(LockedFile&&) noexcept = default;

std::uint64_t LockedFile::Size() const {
    struct stat status {};
    if (::fstat(state_->file.number(), &status) != 0) Refuse(errno, state_->path);
    return static_cast<std::uint64_t>(status.st_size);
}

void LockedFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t size) const {
    char* to = static_cast<char*>(buffer);
    while (size > 0) {
        const ssize_t got = ::pread(state_->file.number(), to, size, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) Refuse(errno, state_->path);
        if (got == 0)
            throw Failure(RunTimeError::PathFileAccess, Concat(state_->path, u" (unexpected end of file)"));
        to += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
}

void LockedFile::WriteAt(std::uint64_t offset, const void* buffer, std::size_t size) {
    const char* from = static_cast<const char*>(buffer);
    while (size > 0) {
        const ssize_t put = ::pwrite(state_->file.number(), from, size, static_cast<off_t>(offset));
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) Refuse(errno, state_->path);
        from += put;
        offset += static_cast<std::uint64_t>(put);
        size -= static_cast<std::size_t>(put);
    }
}

void LockedFile::Truncate(std::uint64_t size) {
    if (::ftruncate(state_->file.number(), static_cast<off_t>(size)) != 0) Refuse(errno, state_->path);
}

void LockedFile::Sync() {
    if (::fsync(state_->file.number()) != 0) Refuse(errno, state_->path);
}

bool LockedFile::TryExclusive() {
    return !posix::IsRangeHeld(state_->file) && ::flock(state_->file.number(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace tav
