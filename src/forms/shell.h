// The desktop's shell.
#pragma once

#include "common/text.h"

namespace tav {

class FormWindow;

// Opens a document with the program the user has for it. What the shell itself asks or says belongs to the window, if
// it is given one. "File not found" when the document is missing, "Path/File access error" when the shell would not,
// or when its program has failed within three seconds (Linux), for which the windows live on.
void OpenDocument(TextView path, FormWindow* owner = nullptr);

}  // namespace tav
