#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "platform/environment.h"
#include "platform/files.h"

namespace tav {
namespace {

volatile std::sig_atomic_t interrupts = 0;

extern "C" void OnInterrupt(int signal) {
    if (interrupts != 0) ::_exit(128 + signal);
    interrupts = 1;
}

Text Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? Text() : FromUtf8(value);
}

Text RealPath(const char* path) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path, nullptr), std::free);
    return real == nullptr ? Text() : FromUtf8(real.get());
}

struct sigaction before_watch;

}  // namespace

Text ComponentFolder() {
    // The shared library that holds this code, when a host loaded one; else the program.
    Dl_info info{};
    Text path;
    if (::dladdr(reinterpret_cast<void*>(&ComponentFolder), &info) != 0 && info.dli_fname != nullptr) {
        path = RealPath(info.dli_fname);
    }
    if (path.find(u".so") == Text::npos) path = RealPath("/proc/self/exe");
    return FolderOf(path);
}

Text TempVariable() {
    return Variable("TEMP");
}

Text HomeFolder() {
    return Variable("HOME");
}

Text ReportFolder() {
    for (const char* name : {"TEMP", "TMPDIR"}) {
        if (Text folder = Variable(name); !folder.empty()) return folder;
    }
    return u"/tmp";
}

LocalTime SystemClock() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return {{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday},
            {local.tm_hour, local.tm_min, local.tm_sec}};
}

InterruptWatch::InterruptWatch() {
    interrupts = 0;
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    ::sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, &before_watch);
}

InterruptWatch::~InterruptWatch() {
    ::sigaction(SIGINT, &before_watch, nullptr);
}

bool InterruptWatch::Interrupted() {
    return interrupts != 0;
}

}  // namespace tav
