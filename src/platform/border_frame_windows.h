// A call that notices when its frame is taken off the stack without a return; each width of the system has a way of
// its own.
#pragma once

namespace tav::win32 {

// Calls body(argument). `left(border)` is called instead of a return when another's handler has taken an exception, before
// anything of what `body` has on the stack is overwritten.
struct Border {
    void (*body)(void* argument);
    void* argument;
    void (*left)(Border& border);
};
void CallNoticing(Border& border);

}  // namespace tav::win32
