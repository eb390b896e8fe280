// The source files that the database holds a document of.
#pragma once

#include <unordered_map>
#include <unordered_set>

#include "common/text.h"
#include "db/connection.h"

namespace tav {

// Their upper-cased names: a file is known without regard to letter case.
using KnownFiles = std::unordered_set<Text>;

KnownFiles ReadKnownFiles(Connection& connection);

// What the database holds of a file: an act, or a statement that is the current one of its series; one that
// is not.
struct HeldOfFile {
    bool current = false;
    bool superseded = false;
};
// By the upper-cased name.
using HeldFiles = std::unordered_map<Text, HeldOfFile>;

HeldFiles ReadHeldFiles(Connection& connection);

}  // namespace tav
