#include <unistd.h>

#include "platform/terminal.h"

namespace tav {

Terminal::Terminal(int argc, char** argv) : arguments_(argv + (argc > 0 ? 1 : 0), argv + argc) {}

Terminal::~Terminal() = default;

bool Terminal::ErrorIsScreen() {
    return ::isatty(STDERR_FILENO) != 0;
}

}  // namespace tav
