#include <gtest/gtest.h>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/win32_windows.h"
#include "support/process.h"
#include "support/support.h"

namespace tav::test {

namespace {

// A word of a command line as CommandLineToArgvW takes it apart.
Text Quoted(TextView word) {
    Text out = u"\"";
    std::size_t backslashes = 0;
    for (const char16_t c : word) {
        if (c == u'"') out.append(backslashes + 1, u'\\');
        backslashes = c == u'\\' ? backslashes + 1 : 0;
        out += c;
    }
    return out.append(backslashes, u'\\').append(u"\" ");
}

win32::Handle OutputFile(TextView path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return win32::Handle(::CreateFileW(win32::Wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

struct Process::State {
    win32::Handle process;
    TempFolder folder;
};

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::function<void()>& in_child)
    : state_(std::make_unique<State>()) {
    if (in_child) ADD_FAILURE() << "nothing runs in a process before its program on Windows";
    const Text own = ComponentFolder() + FromUtf8(program) + u".exe";
    Text line = Quoted(FileExists(own) ? own : FromUtf8(program));
    for (const std::string& argument : arguments) line += Quoted(FromUtf8(argument));
    const win32::Handle out = OutputFile(state_->folder / u"out");
    const win32::Handle err = OutputFile(state_->folder / u"err");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out.get();
    startup.hStdError = err.get();
    PROCESS_INFORMATION started{};
    std::wstring words = win32::Wide(line);
    if (!::CreateProcessW(nullptr, words.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                          &started))
        return;
    ::CloseHandle(started.hThread);
    state_->process = win32::Handle(started.hProcess);
}

Process::~Process() {
    if (state_->process) Wait();
}

void Process::Kill() const {
    if (state_->process) ::TerminateProcess(state_->process.get(), 128 + 9);
}

Outcome Process::Wait() {
    DWORD status = 127;
    if (state_->process) {
        ::WaitForSingleObject(state_->process.get(), INFINITE);
        ::GetExitCodeProcess(state_->process.get(), &status);
        state_->process.Close();
    }
    return {static_cast<int>(status), ReadFile(state_->folder / u"out"), ReadFile(state_->folder / u"err")};
}

Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                   const std::function<void()>& in_child) {
    return Process(name, arguments, in_child).Wait();
}

bool HasProgram(const std::string& name) {
    return RunProgram(name, {"--version"}).status != 127;
}

}  // namespace tav::test
