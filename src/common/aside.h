// Long work beside the windows, which live on meanwhile.
//
// The work runs on a thread of its own while the windows' thread handles events. So handlers run between any two
// instructions of the work: it touches no window, and no state that a handler changes. What it shows is shown by
// the windows' thread: messages and the progress window while the work waits for them, labels and bars soon.
//
// One piece of work runs at a time: a second one, which a handler begins, waits for the first.
#pragma once

#include <functional>

namespace tav {

// Returns or throws as the work does. Where there are no windows (Progress::HasWindows) it simply runs, and so does
// work inside work. Work that is done at once lets no event through. The floating-point settings of the work are those of
// the windows' thread.
//
// A host may end the windows' thread from a handler, and the work goes on without it. So the work owns all that it uses,
// and what it makes stays in what it shares with its caller. When a host's handler of exceptions leaves this function
// (on_left.h), or that thread has ended, the work is told by `cancel` to end soon.
void RunAside(const std::function<void()>& work, const std::function<void()>& cancel = {});

// Whether the windows' thread, which asks, waits for such work.
bool AsideRuns();
// Serves the windows until no work runs.
void FinishAside();

// For the work: runs it on the windows' thread and waits for it.
void RunAtWindows(const std::function<void()>& errand);

// The thread that waited for work has ended in the middle of it. The work is cancelled; returns when it has ended, too.
// Nothing of it is shown any more.
void AbandonAside();

}  // namespace tav
