// The progress of a summary that writes many pages: between two of them the windows live on, and the user may
// cancel.
#pragma once

#include <chrono>

#include "common/text.h"

namespace tav {

// A summary that is done in no time shows no progress.
class PageProgress {
 public:
    explicit PageProgress(int pages);
    ~PageProgress();
    PageProgress(const PageProgress&) = delete;
    PageProgress& operator=(const PageProgress&) = delete;

    // Before the next page, which has that name; false when the user has cancelled.
    bool Next(TextView name);
    int pages() const { return pages_; }
    int done() const { return begun_ - 1; }

 private:
    int pages_;
    int begun_ = 0;
    bool shown_ = false;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace tav
