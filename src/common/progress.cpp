#include "common/progress.h"

namespace tav {
namespace {

Progress*& DefaultProgress() {
    static Progress nothing;
    static Progress* progress = &nothing;
    return progress;
}

thread_local Progress* scoped_progress = nullptr;

}  // namespace

Progress& CurrentProgress() {
    return scoped_progress == nullptr ? *DefaultProgress() : *scoped_progress;
}

void SetDefaultProgress(Progress& progress) {
    DefaultProgress() = &progress;
}

ScopedProgress::ScopedProgress(Progress& progress) : outer_(scoped_progress) {
    scoped_progress = &progress;
}
ScopedProgress::~ScopedProgress() {
    scoped_progress = outer_;
}

}  // namespace tav
