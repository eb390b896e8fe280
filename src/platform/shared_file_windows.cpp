#include "platform/shared_file.h"
#include "platform/win32_windows.h"

namespace tav {

struct SharedFile::State {
    win32::Handle file;
    Text path;
};

SharedFile::SharedFile(TextView path) : state_(std::make_unique<State>()) {
    state_->path = path;
    state_->file =
        win32::OpenFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
}

SharedFile::~SharedFile() = default;
SharedFile::SharedFile(SharedFile&&) noexcept = default;
SharedFile& SharedFile::operator=(SharedFile&&) noexcept = default;

std::size_t SharedFile::ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (!::SetFilePointerEx(state_->file.get(), place, nullptr, FILE_BEGIN))
        win32::Refuse(::GetLastError(), state_->path);
    return win32::ReadInto(state_->file, state_->path, buffer, size);
}

}  // namespace tav
