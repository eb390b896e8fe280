// Checks of the file as a whole: its header, its free map, pages that nobody owns.
#pragma once

#include "jet/check/check_context.h"

namespace tav::jet::check {

void CheckHeader(CheckContext& context);

// Claims the first two pages and reads the global free map.
void CheckGlobalMap(CheckContext& context);

// Once every owner has claimed its pages.
void CheckLeftovers(CheckContext& context);

}  // namespace tav::jet::check
