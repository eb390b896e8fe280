// The source files that the database holds a document of.
#pragma once

#include <unordered_set>

#include "common/text.h"
#include "db/connection.h"

namespace tav {

// Their upper-cased names: a file is known without regard to letter case.
using KnownFiles = std::unordered_set<Text>;

KnownFiles ReadKnownFiles(Connection& connection);

}  // namespace tav
