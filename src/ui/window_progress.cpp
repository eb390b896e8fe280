#include "ui/window_progress.h"

#include <algorithm>

#include "forms/forms.h"
#include "load/run_import.h"
#include "settings/session.h"
#include "ui/frmShortImport.h"
#include "ui/frmmain.h"

namespace tav {

void WindowProgress::Show(int files) {
    files_ = files;
    done_ = 0;
    fraction_ = 0;
    label_.clear();
    drawn_ = {};
    Shared<frmShortImport>().Show();
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
    Shared<frmmain>().ShowLoaded(ImportRunning() ? loaded_ : 0);
}

}  // namespace tav
