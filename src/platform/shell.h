// The desktop's shell.
#pragma once

#include "common/text.h"

namespace tav {

// Opens a document with the program the user has for it; nothing is waited for. "File not found" when it is
// not there, "Path/File access error" when the shell would not.
void OpenDocument(TextView path);

}  // namespace tav
