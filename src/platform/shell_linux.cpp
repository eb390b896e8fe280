#include <spawn.h>
#include <sys/wait.h>

#include "platform/shell.h"

extern char** environ;

namespace tav {

bool OpenDocument(TextView path) {
    std::string program = "xdg-open";
    std::string document = ToUtf8(path);
    char* arguments[] = {program.data(), document.data(), nullptr};
    pid_t child = 0;
    if (::posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0) return false;
    // The opener hands the document on and ends; what it says is the shell's answer.
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace tav
