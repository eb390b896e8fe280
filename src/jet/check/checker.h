// Verifies the invariants of a database file.
#pragma once

#include <vector>

#include "common/text.h"

namespace tav::jet {

struct Finding {
    bool error = true;  // else a note: unusual, but met in good files
    int invariant = 0;  // its number in the list at the head of checker.cpp
    Text text;          // what is broken, and where (table, page, slot)

    bool operator==(const Finding&) const = default;
};

// Reads the whole file. A file that cannot be opened as a database at all gives one finding that says so;
// damage never throws. A file that is missing, that others hold or that may not be read is a Failure.
std::vector<Finding> CheckDatabase(TextView path);

}  // namespace tav::jet
