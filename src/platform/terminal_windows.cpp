#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <memory>

#include "platform/terminal.h"
#include "platform/win32_windows.h"

namespace tav {

// The arguments are asked of the system: those of main have lost what the code page does not have.
Terminal::Terminal(int, char**) : code_page_before_(::GetConsoleOutputCP()) {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), ::LocalFree);
    for (int i = 1; words != nullptr && i < count; ++i) {
        arguments_.push_back(ToUtf8(win32::FromWide(words.get()[i])));
    }
    ::SetConsoleOutputCP(CP_UTF8);
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
}

Terminal::~Terminal() {
    if (code_page_before_ != 0) ::SetConsoleOutputCP(code_page_before_);
}

bool Terminal::ErrorIsScreen() {
    const HANDLE screen = ::GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return ::GetConsoleMode(screen, &mode) != 0 &&
           ::SetConsoleMode(screen, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace tav
