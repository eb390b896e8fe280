#include "common/progress.h"

namespace tav {
namespace {

class NoProgress : public Progress {
 public:
    void Show(int) override {}
    void SetLabel(TextView) override {}
    void SetFilesDone(int) override {}
    void SetFraction(double) override {}
    void ProcessEvents() override {}
    void Close() override {}
};

Progress*& Current() {
    static NoProgress nothing;
    static Progress* current = &nothing;
    return current;
}

}  // namespace

Progress& CurrentProgress() {
    return *Current();
}

ScopedProgress::ScopedProgress(Progress& progress) : outer_(Current()) {
    Current() = &progress;
}
ScopedProgress::~ScopedProgress() {
    Current() = outer_;
}

}  // namespace tav
