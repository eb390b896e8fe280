#include "common/progress.h"

namespace tav {
namespace {

Progress*& Default() {
    static Progress nothing;
    static Progress* progress = &nothing;
    return progress;
}

thread_local Progress* scoped = nullptr;

}  // namespace

Progress& CurrentProgress() {
    return scoped == nullptr ? *Default() : *scoped;
}

void SetDefaultProgress(Progress& progress) {
    Default() = &progress;
}

ScopedProgress::ScopedProgress(Progress& progress) : outer_(scoped) {
    scoped = &progress;
}
ScopedProgress::~ScopedProgress() {
    scoped = outer_;
}

}  // namespace tav
