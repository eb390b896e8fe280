// What the folder scan and the readers need of the progress window: its label, its bar, its cancel button.
#pragma once

#include "common/text.h"

namespace tav {

// A window, a bar on a terminal, or nothing. Cancelling is seen through the cancel stamp
// (settings/session.h), which the cancel button sets while events are processed.
class Progress {
 public:
    virtual ~Progress() = default;
    // The number of new files is the bar's maximum.
    virtual void Show(int files) = 0;
    virtual void SetLabel(TextView file) = 0;
    // Files done so far; the fraction of the current file goes back to 0.
    virtual void SetFilesDone(int files) = 0;
    // How much of the current file is read, 0 to 1.
    virtual void SetFraction(double fraction) = 0;
    virtual void ProcessEvents() = 0;
    virtual void Close() = 0;
};

// The progress in use: the one of the innermost living ScopedProgress, else one that shows nothing.
Progress& CurrentProgress();

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
