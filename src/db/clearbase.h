// Emptying the database: one taxpayer's documents, or all. The dictionary of operation types is kept by both.
//
// A failure is shown under "clearbase", by both. What was deleted before it stays deleted.
#pragma once

#include <optional>

#include "common/text.h"

namespace tav {

// Both return how many documents were removed, superseded statements among them; nothing after a failure.

// Removes the taxpayer's documents, and every row that belongs to no document. As for the loader, several INNs
// stand between "|" and are cleared whatever the KPP, and a KPP of 16 characters and more is every
// subdivision.
std::optional<int> clearbase(TextView database, TextView inn, TextView kpp);

// Removes all documents.
std::optional<int> clearbaseAll(TextView database);

}  // namespace tav
