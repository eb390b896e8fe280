#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/process.h"
#include "support/support.h"

namespace tav::test {
namespace fs = std::filesystem;

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A program of the build before one of that name on the PATH.
std::string OwnProgram(const std::string& name) {
    const std::string own = std::string(TAV_BINARY_DIR) + "/" + name;
    return fs::exists(own) ? own : name;
}

void SendTo(const std::string& path, int descriptor) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
    ::close(file);
}

}  // namespace

struct Process::State {
    pid_t pid = -1;
    TempFolder folder;

    std::string File(TextView name) const { return ToUtf8(folder / name); }
};

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::function<void()>& in_child)
    : state_(std::make_unique<State>()) {
    std::vector<std::string> words{OwnProgram(program)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    state_->pid = ::fork();
    if (state_->pid != 0) return;
    SendTo(state_->File(u"out"), STDOUT_FILENO);
    SendTo(state_->File(u"err"), STDERR_FILENO);
    if (in_child) in_child();
    ::execvp(argv[0], argv.data());
    ::_exit(127);
}

Process::~Process() {
    if (state_->pid > 0) Wait();
}

void Process::Kill() const {
    ::kill(state_->pid, SIGKILL);
}

void Process::Interrupt() const {
    const std::string path = "/proc/" + std::to_string(state_->pid) + "/status";
    for (;;) {
        const std::string status = ReadAll(path);
        const std::size_t caught = status.find("SigCgt:");
        if (caught == std::string::npos) break;
        if ((std::stoull(status.substr(caught + 7), nullptr, 16) >> (SIGINT - 1) & 1) != 0) break;
        ::usleep(1000);
    }
    ::kill(state_->pid, SIGINT);
}

Outcome Process::Wait() {
    int status = 0;
    ::waitpid(state_->pid, &status, 0);
    state_->pid = -1;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {code, ReadAll(state_->File(u"out")), ReadAll(state_->File(u"err"))};
}

Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                   const std::function<void()>& in_child) {
    return Process(name, arguments, in_child).Wait();
}

bool HasProgram(const std::string& name) {
    return RunProgram(name, {"--version"}).status != 127;
}

}  // namespace tav::test
