// What the Linux platform files share: descriptors that close themselves, errno as a Failure.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <utility>

#include "common/failure.h"

namespace tav::posix {

class Descriptor {
 public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    void Close() {
        if (number_ >= 0) ::close(std::exchange(number_, -1));
    }

 private:
    int number_ = -1;
};

// The failure that `error` (an errno value) means for this path.
[[noreturn]] void Refuse(int error, TextView path);

// Reads the rest of the file, up to the buffer's size, or refuses.
std::size_t ReadInto(const Descriptor& file, TextView path, char* buffer, std::size_t size);

// Writes everything, or refuses.
void WriteAll(const Descriptor& file, std::string_view bytes, TextView path);

// Whether somebody else has a lock on any byte of the file.
bool IsRangeHeld(const Descriptor& file);

}  // namespace tav::posix
