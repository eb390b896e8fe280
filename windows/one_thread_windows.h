// The rule that the component works on one thread at a time: the one whose operation runs, or whose windows
// are there. Its state and its windows are for one thread; COM holds to that only hosts that pass objects on
// by its rules. When nothing runs and no window is left, or the thread has ended, another may be the next.
#pragma once

#include "common/on_left.h"
#include "common/text.h"

namespace tav {

// An operation of the present thread, for as long as it lives.
class OneThread {
 public:
    // `operation`: its name, for whoever is refused meanwhile. It outlives the operation.
    explicit OneThread(TextView operation);
    ~OneThread();
    OneThread(const OneThread&) = delete;
    OneThread& operator=(const OneThread&) = delete;

    // False when another thread is at work; nothing of the component may be touched then.
    explicit operator bool() const { return entered_; }

 private:
    void End() const;

    const bool entered_;
    const OnLeft left_{[this] { End(); }};
};

// Tells the user, in a box of the present thread, that the operation was refused, which
// thread has the component and what it has open.
void ShowWrongThread(TextView title);

}  // namespace tav
