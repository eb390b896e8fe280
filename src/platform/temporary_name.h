// How the temporary files and folders begin that are made beside what is written. Those that a kill leaves are removed,
// so the name is one that nobody else gives.
#pragma once

#include "common/text.h"

namespace tav {

inline constexpr TextView kTemporaryName = u".tav-tmp-";

}  // namespace tav
