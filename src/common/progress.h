// What long work needs of the progress window: its label, its bar, its cancel button.
#pragma once

#include "common/text.h"

namespace tav {

// A window, a bar on a terminal; this class itself shows nothing. Cancelling is noticed through
// the cancel stamp (settings/session.h), which the cancel button sets while events are processed.
class Progress {
 public:
    virtual ~Progress() = default;
    // The number of new files is the bar's maximum.
    virtual void Show([[maybe_unused]] int files) {}
    // A report of so many pages is made: they count as files from here on.
    virtual void ShowPages(int pages) { Show(pages); }
    virtual void SetLabel([[maybe_unused]] TextView file) {}
    // Files done so far; the fraction of the current file goes back to 0.
    virtual void SetFilesDone([[maybe_unused]] int files) {}
    // How much of the current file is read, 0 to 1.
    virtual void SetFraction([[maybe_unused]] double fraction) {}
    virtual void Close() {}

    // The scan has ended; so many of the new files have been looked at by the loader.
    virtual void SetLoaded([[maybe_unused]] int files, [[maybe_unused]] int of) {}
    // Lets the user press buttons and the windows draw themselves.
    virtual void ProcessEvents() {}
    // Whether there are windows that long work must not stop (aside.h).
    virtual bool HasWindows() const { return false; }
};

// The progress in use: the one of the thread's innermost living ScopedProgress, else the default.
Progress& CurrentProgress();

// What shows the progress by default: nothing, until there are windows.
void SetDefaultProgress(Progress& progress);

class ScopedProgress {
 public:
    explicit ScopedProgress(Progress& progress);
    ~ScopedProgress();
    ScopedProgress(const ScopedProgress&) = delete;
    ScopedProgress& operator=(const ScopedProgress&) = delete;

 private:
    Progress* outer_;
};

}  // namespace tav
