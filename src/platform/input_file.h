// A file that is read piece by piece from its beginning to its end. What the system refuses is a Failure as in files.h.
#pragma once

#include <cstddef>
#include <memory>

#include "common/text.h"

namespace tav {

class InputFile {
 public:
    explicit InputFile(TextView path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // Fills the buffer with what follows; only where the file ends it gets less.
    std::size_t Read(char* buffer, std::size_t size);
    // The next piece is the file's first again.
    void Rewind();

 private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tav
