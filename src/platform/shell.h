// The desktop's shell.
#pragma once

#include "common/text.h"

namespace tav {

// Opens a document with the program the user has for it. False when the shell would not; nothing is waited
// for.
bool OpenDocument(TextView path);

}  // namespace tav
