// An import's progress on the screen: the progress window while files are read, the bar of the main window
// while they are loaded.
#pragma once

#include <chrono>

#include "common/progress.h"

namespace tav {

class WindowProgress : public Progress {
 public:
    void Show(int files) override;
    void ShowPages(int pages) override;
    void SetLabel(TextView file) override;
    void SetFilesDone(int files) override;
    void SetFraction(double fraction) override;
    void Close() override;
    void SetLoaded(int files, int of) override;
    // Costs nothing when it is called thousands of times a second.
    void ProcessEvents() override;
    bool HasWindows() const override { return true; }

 private:
    void Begin(int files);
    void Draw();

    int files_ = 0;
    int done_ = 0;
    double fraction_ = 0;
    double loaded_ = 0;
    bool summing_up_ = false;
    Text label_;
    std::chrono::steady_clock::time_point drawn_;
};

}  // namespace tav
