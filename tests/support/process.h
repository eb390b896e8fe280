// Runs a program of the build as a person would.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tav::test {

struct Outcome {
    int status = 0;   // exit status, or 128 + signal
    std::string out;  // standard output
    std::string err;  // standard error
};

// A program of the build, else one on the PATH, with arguments; `in_child` runs in the new process before the
// program starts (limits, signals), which Linux alone has.
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

    void Kill() const;
    // Ctrl-C, as soon as the program has a handler of its own for it.
    void Interrupt() const;
    Outcome Wait();

 private:
    struct State;
    std::unique_ptr<State> state_;
};

// Whether a program of that name can be run (mdb-export and its like).
bool HasProgram(const std::string& name);

}  // namespace tav::test
