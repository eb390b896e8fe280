#include "terminal_output.h"

#include <algorithm>
#include <cstdio>

#include "common/failure.h"
#include "platform/environment.h"
#include "platform/terminal.h"
#include "settings/session.h"

namespace tav::cli {

void Print(std::string_view bytes) {
    const bool written =
        std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
    if (!written) throw Failure(RunTimeError::PathFileAccess, u"стандартный вывод");
}

void PrintLine(TextView text) {
    Print(ToUtf8(text) + "\n");
}

void TerminalBox::Show(const Message& message) {
    failed_ = failed_ || message.icon == MessageIcon::Critical;
    DefaultMessageBox().Show(message);
}

TerminalProgress::TerminalProgress() : visible_(Terminal::ErrorIsScreen()) {}

void TerminalProgress::Show(int files) {
    files_ = files;
    done_ = 0;
    fraction_ = 0;
    shown_percent_ = -1;
}

void TerminalProgress::SetLabel(TextView file) {
    label_ = ToUtf8(file);
    shown_percent_ = -1;
    Draw();
}

void TerminalProgress::SetFilesDone(int files) {
    done_ = files;
    fraction_ = 0;
    Draw();
}

void TerminalProgress::SetFraction(double fraction) {
    fraction_ = fraction;
    Draw();
}

void TerminalProgress::ProcessEvents() {
    if (InterruptWatch::Interrupted() && CancelStamp() == 0) RequestCancel();
}

void TerminalProgress::Close() {
    if (visible_) std::fputs("\r\x1b[K", stderr);
}

void TerminalProgress::Draw() {
    const double done = files_ == 0 ? 1 : std::clamp((done_ + fraction_) / files_, 0.0, 1.0);
    const int percent = static_cast<int>(done * 100);
    if (!visible_ || percent == shown_percent_) return;
    shown_percent_ = percent;
    constexpr int kWidth = 30;
    const std::string bar = std::string(static_cast<std::size_t>(percent * kWidth / 100), '#');
    std::fprintf(stderr, "\r\x1b[K[%-*s] %3d%% %s", kWidth, bar.c_str(), percent, label_.c_str());
    std::fflush(stderr);
}

}  // namespace tav::cli
