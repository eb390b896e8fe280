// What the benchmarks share: a folder of their own, documents of a wanted size, a loaded database.
#pragma once

#include <cstddef>
#include <string>

#include "common/text.h"

namespace tav::bench {

// A new empty folder, removed at the end; its path ends with the separator.
class Folder {
 public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    Text operator/(TextView name) const { return path_ + Text(name); }
    const Text& path() const { return path_; }

 private:
    Text path_;
};

// The RTF bytes of a statement of at least `bytes` bytes.
std::string StatementOfSize(std::size_t bytes);

// A new database with the four tables.
void NewDatabase(TextView path);

// Makes `count` small statements in `folder`/in, scans them
// and loads them into `folder`/base.mdb; the catalogue's path.
Text LoadManyFiles(const Folder& folder, int count);

}  // namespace tav::bench
