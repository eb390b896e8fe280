// The terminal as the component's screen: results on standard
// output, messages and the progress bar on standard error.
#pragma once

#include "common/message_box.h"
#include "common/progress.h"
#include "common/text.h"

namespace tav::cli {

// Writes to standard output. A reader that went away or a
// full disk is a Failure, so that no result is half given.
void Print(std::string_view bytes);
void PrintLine(TextView text);

// Shows messages where they go by default; remembers whether one was critical.
class TerminalBox : public MessageBox {
 public:
    void Show(const Message& message) override;
    bool failed() const { return failed_; }

 private:
    bool failed_ = false;
};

// A bar on standard error when that is a terminal. Ctrl-C is the cancel button either way.
class TerminalProgress : public Progress {
 public:
    TerminalProgress();
    void Show(int files) override;
    void SetLabel(TextView file) override;
    void SetFilesDone(int files) override;
    void SetFraction(double fraction) override;
    void ProcessEvents() override;
    void Close() override;

 private:
    void Draw();

    bool visible_;
    int files_ = 0;
    int done_ = 0;
    double fraction_ = 0;
    int shown_percent_ = -1;
    std::string label_;
};

}  // namespace tav::cli
