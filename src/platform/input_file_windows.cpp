#include "platform/input_file.h"
#include "platform/win32_windows.h"

namespace tav {

struct InputFile::State {
    Text path;
    win32::Handle file;
};

InputFile::InputFile(TextView path) : state_(std::make_unique<State>()) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    state_->path = path;
    state_->file = win32::OpenFile(path, GENERIC_READ, kShareAll);
}

InputFile::~InputFile() = default;

std::size_t InputFile::Read(char* buffer, std::size_t size) {
    return win32::ReadInto(state_->file, state_->path, buffer, size);
}

void InputFile::Rewind() {
    if (!::SetFilePointerEx(state_->file.get(), {}, nullptr, FILE_BEGIN))
        win32::Refuse(::GetLastError(), state_->path);
}

}  // namespace tav
