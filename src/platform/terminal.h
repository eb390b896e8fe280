// The terminal a program was started from.
#pragma once

#include <string>
#include <vector>

namespace tav {

// Standard output and standard error take UTF-8 and any other bytes as they are while one lives. A program
// makes one at its start.
class Terminal {
 public:
    Terminal(int argc, char** argv);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // What follows the program's name, in UTF-8.
    const std::vector<std::string>& arguments() const { return arguments_; }

    // Whether standard error is a screen that understands escape sequences.
    static bool ErrorIsScreen();

 private:
    std::vector<std::string> arguments_;
    unsigned code_page_before_ = 0;  // of the console; 0 when there is nothing to restore
};

}  // namespace tav
