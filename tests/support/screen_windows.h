// The windows of another program, driven from this one by messages alone.
#pragma once

#include "platform/win32_windows.h"
#include "support/screen.h"

namespace tav::test {

// While it lives, screen.h sees and drives the windows of the thread that this window belongs to, and no
// others. A click then does not wait for what it does; the texts of trees, which are memory of that program,
// and the name of the control that has the keyboard are not to be had.
class DrivenProgram {
 public:
    explicit DrivenProgram(HWND window);
    ~DrivenProgram();
    DrivenProgram(const DrivenProgram&) = delete;
    DrivenProgram& operator=(const DrivenProgram&) = delete;

    bool Ended() const;

 private:
    win32::Handle process_;
};

}  // namespace tav::test
