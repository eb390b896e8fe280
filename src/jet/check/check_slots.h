// Checks that hold for every page of records, and the map of those with room.
#pragma once

#include "jet/check/check_context.h"

namespace tav::jet::check {

// Type, owner, slot table and free field of a data page. False when its slots mean nothing.
bool CheckDataPage(CheckContext& context, PageNumber page, std::uint32_t owner, TextView what);

// The map of the pages with free space: a part of `owned` (ascending).
void CheckFreeMap(CheckContext& context, Pointer map, const std::vector<PageNumber>& owned, TextView what);

// The bytes that are the same on every page of a kind: byte 1, and bytes 8 to 11.
void CheckByteOne(CheckContext& context, PageNumber page, TextView what);
void CheckZeros(CheckContext& context, PageNumber page, TextView what);

}  // namespace tav::jet::check
