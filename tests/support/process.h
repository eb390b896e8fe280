// Runs a program of the build as a person would.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tav::test {

struct Outcome {
    int status = 0;   // exit status, or 128 + signal
    std::string out;  // standard output
    std::string err;  // standard error
};

// build/NAME with arguments; `in_child` runs in the new process before the program starts (limits, signals).
Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                   const std::function<void()>& in_child = {});

// The same, started only; Wait gives its outcome.
class Process {
 public:
    Process(const std::string& program, const std::vector<std::string>& arguments,
            const std::function<void()>& in_child = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void Signal(int signal) const;
    // Waits until the program has a handler of its own for the signal, or has ended.
    void AwaitHandler(int signal) const;
    Outcome Wait();

 private:
    int pid_ = -1;
    std::string folder_;
};

// Whether a program of that name can be run (mdb-export and its like).
bool HasProgram(const std::string& name);

}  // namespace tav::test
