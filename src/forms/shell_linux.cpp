#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "common/concat.h"
#include "forms/shell.h"
#include "platform/files.h"
#include "platform/posix_linux.h"

namespace tav {

// The opener runs as a process of its own that nobody waits for: without a desktop it is the word processor
// itself. A pipe that closes when the program starts tells whether there is one.
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
        ::setsid();
        if (::fork() != 0) ::_exit(0);
        ::execlp("xdg-open", "xdg-open", document.c_str(), nullptr);
        const int error = errno;
        if (::write(writer.number(), &error, sizeof error) < 0) ::_exit(2);
        ::_exit(1);
    }
    writer.Close();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    const bool opened = ::read(reader.number(), &error, sizeof error) == 0;
    if (!opened) throw Failure(RunTimeError::PathFileAccess, Concat(path, u" (xdg-open)"));
}

}  // namespace tav
