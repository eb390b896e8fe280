// The report of one statement, "vipis.doc".
#pragma once

#include <cstdint>

#include "common/text.h"

namespace tav {

// Writes the report of the statement whose header has that id into the export folder and returns the file's
// full path; empty after a failure, which is shown. A number that is no statement's is one.
Text GetVipis(TextView database, std::int32_t id, TextView export_folder);

}  // namespace tav
