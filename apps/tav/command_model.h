// The commands as the parser has them, for what is written about them: shell completion and the manual.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tav::cli {

// What can be typed for a value.
enum class ValueKind { None, Anything, File, Folder, Setting, Shell };

struct CommandOption {
    std::vector<std::string> names;  // "-h", "--help"; of an argument: "ФАЙЛ"
    std::string value;               // "ПАПКА"; empty for a switch
    std::string meaning;
    ValueKind kind = ValueKind::None;
    bool required = false;
    bool repeats = false;
};

struct Command {
    std::vector<std::string> path;  // {"db", "check"}; empty for the program itself
    std::string meaning;
    std::vector<CommandOption> options;
    std::vector<CommandOption> arguments;
    std::vector<std::pair<std::string, std::string>> commands;  // those below it: name and meaning

    // "db check"
    std::string Name() const;
};

// The program and all its commands, each before those below it.
std::vector<Command> CommandsOf(const CLI::App& program);

// The words that a value of that kind can be: names of settings, of shells; else none.
std::vector<std::string> WordsOf(ValueKind kind);

// The shells that completion is written for, and how.
struct Shell {
    const char* name;
    std::string (*completion)(const std::vector<Command>& commands);
};
const std::vector<Shell>& Shells();

// What bash and zsh read, and the page tav(1) as troff.
std::string BashCompletion(const std::vector<Command>& commands);
std::string ZshCompletion(const std::vector<Command>& commands);
std::string ManualPage(const std::vector<Command>& commands);

}  // namespace tav::cli
