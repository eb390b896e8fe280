// The QApplication that the windows need: the host's, or one of our own.
//
// Without a screen QApplication ends the process. So the screen is asked first, and our own application is
// made for the platform that has answered and no other.
#pragma once

#include "common/text.h"

namespace tav {

// Whether there is an application now that windows can be made in by this thread; `why` says why not.
bool EnsureApplication(Text& why);

// The same for drawing on paper, which needs no screen. A process that began without one has no windows later
// on either.
bool EnsureDrawing(Text& why);

}  // namespace tav
