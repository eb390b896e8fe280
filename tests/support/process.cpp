#include "support/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tav::test {
namespace fs = std::filesystem;

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void SendTo(const std::string& path, int descriptor) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
    ::close(file);
}

}  // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::function<void()>& in_child) {
    folder_ = (fs::temp_directory_path() / "tav-run-").string() + std::string(6, 'X');
    if (::mkdtemp(folder_.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ != 0) return;
    SendTo(folder_ + "/out", STDOUT_FILENO);
    SendTo(folder_ + "/err", STDERR_FILENO);
    if (in_child) in_child();
    ::execvp(argv[0], argv.data());
    ::_exit(127);
}

Process::~Process() {
    if (pid_ > 0) Wait();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void Process::Signal(int signal) const {
    ::kill(pid_, signal);
}

void Process::AwaitHandler(int signal) const {
    const std::string path = "/proc/" + std::to_string(pid_) + "/status";
    for (;;) {
        const std::string status = ReadAll(path);
        const std::size_t caught = status.find("SigCgt:");
        if (caught == std::string::npos) return;
        if ((std::stoull(status.substr(caught + 7), nullptr, 16) >> (signal - 1) & 1) != 0) return;
        ::usleep(1000);
    }
}

Outcome Process::Wait() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {code, ReadAll(folder_ + "/out"), ReadAll(folder_ + "/err")};
}

Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                   const std::function<void()>& in_child) {
    const std::string own = std::string(TAV_BINARY_DIR) + "/" + name;
    return Process(fs::exists(own) ? own : name, arguments, in_child).Wait();
}

bool HasProgram(const std::string& name) {
    return RunProgram(name, {"--version"}).status != 127;
}

}  // namespace tav::test
