// An empty operations database: the file that the host application normally ships.
//
// Four tables: tav_operations_header (one row per loaded part of a document), tav_operations (the lines of
// statements), tav_acts (the amounts of acts, one column per value of the act), tav_operations_type (the
// dictionary of operation types).
#pragma once

#include <string>

#include "common/text.h"

namespace tav {

// The file's bytes, always the same.
std::string NewOperationsDatabase();

// Writes it to `path`, whole or not at all. A file that is there already is left alone and named in the
// Failure; missing folders are not created.
void CreateDatabase(TextView path);

}  // namespace tav
