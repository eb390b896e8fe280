#include "ui/window_progress.h"

#include <algorithm>
#include <utility>

#include "forms/forms.h"
#include "load/run_import.h"
#include "settings/session.h"
#include "ui/frmShortImport.h"
#include "ui/frmmain.h"

namespace tav {

void WindowProgress::Begin(int files) {
    files_ = files;
    done_ = 0;
    fraction_ = 0;
    loaded_ = 0;
    label_.clear();
    drawn_ = {};
}

void WindowProgress::Show(int files) {
    Begin(files);
    Shared<frmShortImport>().Begin(frmShortImport::Work::Import);
}

void WindowProgress::ShowPages(int pages) {
    Begin(pages);
    summing_up_ = true;
    Shared<frmShortImport>().Begin(frmShortImport::Work::Summary);
}

void WindowProgress::SetLabel(TextView file) {
    label_ = file;
}

void WindowProgress::SetFilesDone(int files) {
    done_ = files;
    fraction_ = 0;
}

void WindowProgress::SetFraction(double fraction) {
    fraction_ = fraction;
}

void WindowProgress::Close() {
    Shared<frmShortImport>().CloseSoon();
    if (std::exchange(summing_up_, false)) Shared<frmmain>().ShowProgress(0);
}

void WindowProgress::SetLoaded(int files, int of) {
    loaded_ = of == 0 ? 0 : static_cast<double>(files) / of;
}

void WindowProgress::ProcessEvents() {
    constexpr std::chrono::milliseconds kBetweenDrawings(25);
    const auto now = std::chrono::steady_clock::now();
    if (now - drawn_ < kBetweenDrawings) return;
    Draw();
    if (!CurrentToolkit().ProcessEvents())
        RequestCancel();  // a program that ends does not wait for the reading
    drawn_ = std::chrono::steady_clock::now();
}

void WindowProgress::Draw() {
    const double read = files_ == 0 ? 0 : std::clamp((done_ + fraction_) / files_, 0.0, 1.0);
    Shared<frmShortImport>().ShowProgress(label_, read);
    // Reading is the one half of an import, loading the other.
    const double part = ImportRunning() ? (read + loaded_) / 2 : summing_up_ ? read : 0;
    Shared<frmmain>().ShowProgress(part);
}

}  // namespace tav
