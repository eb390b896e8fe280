#include <fcntl.h>

#include "platform/input_file.h"
#include "platform/posix_linux.h"

namespace tav {

struct InputFile::State {
    Text path;
    posix::Descriptor file;
};

InputFile::InputFile(TextView path) : state_(std::make_unique<State>()) {
    state_->path = path;
    state_->file = posix::Descriptor(::open(ToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC));
    if (!state_->file) posix::Refuse(errno, path);
}

InputFile::~InputFile() = default;

std::size_t InputFile::Read(char* buffer, std::size_t size) {
    return posix::ReadInto(state_->file, state_->path, buffer, size);
}

void InputFile::Rewind() {
    if (::lseek(state_->file.number(), 0, SEEK_SET) < 0) posix::Refuse(errno, state_->path);
}

}  // namespace tav
