// Some libraries keep a lack of memory to themselves and go on without what they had no room for. What they
// made meanwhile is no result.
#pragma once

#include <cerrno>
#include <new>

namespace tav {

// Lives while such a library works on this thread.
class MemoryWatch {
 public:
    MemoryWatch() { errno = 0; }
    // std::bad_alloc when there has been too little memory. An allocation that fails leaves ENOMEM, and what
    // succeeds later does not take it back. A heap that cannot grow where it is leaves it as well, even when there is
    // memory elsewhere: such a process, which is rare with 64 bits, is told of a lack that it has not.
    void Check() const {
        if (errno == ENOMEM) throw std::bad_alloc();
    }
};

}  // namespace tav
