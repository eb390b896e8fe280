#include "reports/page_progress.h"

#include "common/progress.h"
#include "settings/session.h"

namespace tav {

PageProgress::PageProgress(int pages) : pages_(pages) {}

PageProgress::~PageProgress() {
    if (shown_) CurrentProgress().Close();
}

bool PageProgress::Next(TextView name) {
    constexpr std::chrono::milliseconds kNoTime(300);
    Progress& progress = CurrentProgress();
    if (!shown_ && std::chrono::steady_clock::now() - start_ > kNoTime) {
        shown_ = true;
        progress.ShowPages(pages_);
    }
    if (shown_) {
        progress.SetFilesDone(begun_);
        progress.SetLabel(name);
    }
    ++begun_;
    progress.ProcessEvents();
    return CancelStamp() == 0;
}

}  // namespace tav
