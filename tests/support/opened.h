// The documents that the shell is asked to open, written down instead.
#pragma once

#include <string>

#include "support/support.h"

namespace tav::test {

// While it lives. Only one at a time.
class OpenedDocuments {
 public:
    // The record is kept in this folder.
    explicit OpenedDocuments(const TempFolder& folder);
    ~OpenedDocuments();
    OpenedDocuments(const OpenedDocuments&) = delete;
    OpenedDocuments& operator=(const OpenedDocuments&) = delete;

    // The paths so far, each on a line.
    std::string Paths() const;

 private:
    const Text record_;
    const std::string path_variable_;
};

}  // namespace tav::test
