#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "common/aside.h"
#include "common/concat.h"
#include "forms/shell.h"
#include "platform/files.h"
#include "platform/posix_linux.h"

namespace tav {
namespace {

// An opener that has run for so long has found its program: without a desktop it is the word processor itself.
constexpr int kPatienceSeconds = 3;

// Starts the opener and tells its status to the other end of the pipe, if it ends soon. Nobody waits for the watcher
// itself.
[[noreturn]] void Watch(const char* document, int pipe) {
    constexpr int kNotStarted = 127;
    constexpr int kTurnsPerSecond = 20;
    constexpr timespec kTurn = {0, 1'000'000'000 / kTurnsPerSecond};
    ::setsid();
    const pid_t opener = ::fork();
    if (opener == 0) {
        ::execlp("xdg-open", "xdg-open", document, nullptr);
        ::_exit(kNotStarted);
    }
    for (int turn = 0; turn < kPatienceSeconds * kTurnsPerSecond; ++turn) {
        int status = 0;
        if (::waitpid(opener, &status, WNOHANG) == opener)
            ::_exit(::write(pipe, &status, sizeof status) < 0 ? 1 : 0);
        ::nanosleep(&kTurn, nullptr);
    }
    ::_exit(0);
}

// As waitpid has it; 0 for an opener that goes on.
int StatusFrom(int pipe) {
    int status = 0;
    ssize_t got = 0;
    while ((got = ::read(pipe, &status, sizeof status)) < 0 && errno == EINTR) {
    }
    return got == sizeof status ? status : 0;
}

}  // namespace

void OpenDocument(TextView path, FormWindow*) {
    if (!FileExists(path)) throw Failure(RunTimeError::FileNotFound, path);
    const std::string document = ToUtf8(path);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) posix::Refuse(errno, path);
    const posix::Descriptor reader(ends[0]);
    posix::Descriptor writer(ends[1]);
    const pid_t child = ::fork();
    if (child < 0) posix::Refuse(errno, path);
    if (child == 0) {
        if (::fork() != 0) ::_exit(0);
        Watch(document.c_str(), writer.number());
    }
    writer.Close();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    int status = 0;
    RunAside([&] { status = StatusFrom(reader.number()); });
    if (status == 0) return;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
    throw Failure(RunTimeError::PathFileAccess, Concat(path, u" (xdg-open: ", Digits(code), u")"));
}

}  // namespace tav
