// Emptying the database: one taxpayer's documents, or all. The dictionary of operation types is kept by both.
//
// A failure is shown under "clearbase", by both. What was deleted before it stays deleted.
#pragma once

#include "common/text.h"

namespace tav {

// Removes the taxpayer's documents, and every row that belongs to no document.
void clearbase(TextView database, TextView inn, TextView kpp);

// Removes all documents.
void clearbaseAll(TextView database);

}  // namespace tav
