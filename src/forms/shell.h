// The desktop's shell.
#pragma once

#include "common/text.h"

namespace tav {

class FormWindow;

// Opens a document with the program the user has for it; nothing is waited for. What the
// shell itself asks or says belongs to the window, if it is given one. "File not found"
// when the document is missing, "Path/File access error" when the shell would not.
void OpenDocument(TextView path, FormWindow* owner = nullptr);

}  // namespace tav
