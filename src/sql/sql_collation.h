// How texts compare: as the keys of the database's own text indexes do (jet/index/text_codes.h), without regard
// to letter case and to trailing spaces. Apostrophes, hyphens and dashes, and the dots of Ё, matter only between
// texts that are equal without them. Characters without a known code come last, in the order of Unicode.
#pragma once

#include <cstdint>

#include "common/text.h"

struct sqlite3;

namespace tav::jet {

class Callbacks;

// The name the collation and its texts' columns have in SQLite.
inline constexpr const char* kCollation = "jet";

// < 0, 0, > 0.
int Collate(TextView a, TextView b);
// Texts that compare equal have equal hashes.
std::uint64_t CollationHash(TextView text);

// Gives a SQLite connection the collation, and the functions of the dialect that it lacks. `callbacks`
// outlives it.
void AddDialect(sqlite3* database, Callbacks& callbacks);

}  // namespace tav::jet
