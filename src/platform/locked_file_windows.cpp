#include <algorithm>

#include "common/concat.h"
#include "platform/locked_file.h"
#include "platform/win32_windows.h"

// The lock of an open file is its share mode: the system
// refuses whoever asks for more, on network drives too.
namespace tav {

using win32::Handle;
using win32::Refuse;

namespace {

// The largest piece of one call.
constexpr std::size_t kPiece = 1 << 30;

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

}  // namespace

struct LockedFile::State {
    Handle file;
    Text path;
};

LockedFile::LockedFile(TextView path, Access access) : state_(std::make_unique<State>()) {
    state_->path = path;
    state_->file = access == Access::Write ? win32::OpenFile(path, GENERIC_READ | GENERIC_WRITE, 0)
                                           : win32::OpenFile(path, GENERIC_READ, FILE_SHARE_READ);
    if (::GetFileType(state_->file.get()) != FILE_TYPE_DISK)
        throw Failure(RunTimeError::PathFileAccess, path);
}

LockedFile::LockedFile() : state_(std::make_unique<State>()) {}

LockedFile LockedFile::Temporary(TextView beside) {
    LockedFile made;
    made.state_->path = win32::TemporaryName(beside);
    made.state_->file = Handle(::CreateFileW(win32::NativePath(made.state_->path).c_str(),
                                             GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                             FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (!made.state_->file) Refuse(::GetLastError(), made.state_->path);
    return made;
}

LockedFile::~LockedFile() = default;
LockedFile::LockedFile(LockedFile&&) noexcept = default;
LockedFile& LockedFile::operator=(LockedFile&&) noexcept = default;

std::uint64_t LockedFile::Size() const {
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(state_->file.get(), &size)) Refuse(::GetLastError(), state_->path);
    return static_cast<std::uint64_t>(size.QuadPart);
}

void LockedFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t size) const {
    char* to = static_cast<char*>(buffer);
    while (size > 0) {
        OVERLAPPED place = At(offset);
        DWORD got = 0;
        const BOOL read =
            ::ReadFile(state_->file.get(), to, static_cast<DWORD>(std::min(size, kPiece)), &got, &place);
        if (!read && ::GetLastError() != ERROR_HANDLE_EOF) Refuse(::GetLastError(), state_->path);
        if (got == 0)
            throw Failure(RunTimeError::PathFileAccess, Concat(state_->path, u" (unexpected end of file)"));
        to += got;
        offset += got;
        size -= got;
    }
}

void LockedFile::WriteAt(std::uint64_t offset, const void* buffer, std::size_t size) {
    const char* from = static_cast<const char*>(buffer);
    while (size > 0) {
        OVERLAPPED place = At(offset);
        DWORD put = 0;
        if (!::WriteFile(state_->file.get(), from, static_cast<DWORD>(std::min(size, kPiece)), &put, &place))
            Refuse(::GetLastError(), state_->path);
        from += put;
        offset += put;
        size -= put;
    }
}

void LockedFile::Truncate(std::uint64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (!::SetFileInformationByHandle(state_->file.get(), FileEndOfFileInfo, &end, sizeof end))
        Refuse(::GetLastError(), state_->path);
}

void LockedFile::Sync() {
    if (!::FlushFileBuffers(state_->file.get())) Refuse(::GetLastError(), state_->path);
}

// A share mode cannot be changed, so the file is opened again; in its old mode when others read.
bool LockedFile::TryExclusive() {
    state_->file.Close();
    try {
        state_->file = win32::OpenFile(state_->path, GENERIC_READ, 0);
        return true;
    } catch (const Failure&) {
        state_->file = win32::OpenFile(state_->path, GENERIC_READ, FILE_SHARE_READ);
        return false;
    }
}

}  // namespace tav
