// The reader of printed forms: statements of operations, and reconciliation acts delivered as RTF.
#pragma once

#include "common/text.h"
#include "convert/conversion.h"

namespace tav {

// Reads `folder` (which ends with the path separator) + `file_name`. What the user cancelled has no
// entry, nor has what failed: the failure is shown ("Ошибка в функции LoadRtfFile"; the description
// names the document).
//
// Between pages the user interface processes its events (common/progress.h), and the cancel stamp is looked
// at (settings/session.h).
Conversion LoadRtfFile(TextView folder, TextView file_name);

}  // namespace tav
