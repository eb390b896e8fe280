// The loops that run inside a host's own: all of the thread's messages go on meanwhile.
#pragma once

#include <functional>

namespace tav {

// Until `done`. Ends early when the process is asked to quit, and leaves that request to the loops outside.
void RunLoopUntil(const std::function<bool()>& done);

// Lets a loop look at its `done` again, where that changed without a message.
void WakeLoop();

// Handles what is waiting, for a moment at most: a window that never finishes its drawing holds up nobody.
// False when the thread is asked to quit, which the loops outside learn, too.
bool HandleWaiting();

}  // namespace tav
