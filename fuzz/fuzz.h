// What the fuzz targets share: a file of each process for what takes a path, and silence.
//
// A target is one function over some bytes. Whatever they are: no crash, no access outside, nothing undefined, nothing
// slow. A Failure is an answer like any other.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "common/failure.h"
#include "common/message_box.h"

namespace tav::fuzz {

// A file in memory, gone with the process; its folder has nothing else.
class Scratch {
 public:
    explicit Scratch(const std::string& name) {
        std::string folder = "/dev/shm/tav-fuzz-" + std::string(6, 'X');
        if (::mkdtemp(folder.data()) == nullptr) std::abort();
        folder_ = folder + "/";
        path_ = folder_ + name;
    }
    ~Scratch() {
        ::unlink(path_.c_str());
        ::rmdir(folder_.c_str());
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    void Write(std::string_view bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }
    Text path() const { return FromUtf8(path_); }
    Text folder() const { return FromUtf8(folder_); }

 private:
    std::string folder_;
    std::string path_;
};

class Silence : public MessageBox {
 public:
    Silence() : scope_(*this) {}
    void Show(const Message&) override {}

 private:
    ScopedMessageBox scope_;
};

// Runs `body`; what it throws on purpose ends it.
template <class Body>
int Try(Body body) {
    static Silence silence;
    try {
        body();
    } catch (const Failure&) {
    }
    return 0;
}

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace tav::fuzz
