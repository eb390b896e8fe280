// The reader of printed forms: statements of operations, and reconciliation acts delivered as RTF.
#pragma once

#include <string>

#include "common/text.h"

namespace tav {

// Reads `folder` (which ends with the path separator) + `file_name`. Returns the document's catalogue entry,
// the lines of one `file` element, as Windows-1251 bytes; empty text when the user cancelled, or after a
// failure has been shown ("Ошибка в функции LoadRtfFile"; the description names the document).
//
// Between pages the user interface processes its events (common/progress.h), and the cancel stamp is looked
// at (settings/session.h). Where a page hides visible text behind its outermost closing brace, one line on
// standard error names the file and the page.
std::string LoadRtfFile(TextView folder, TextView file_name);

}  // namespace tav
