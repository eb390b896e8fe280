// What the parser of the command line says, in Russian: the help, and what is wrong with a command line.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tav::cli {

// The words of the help; its columns are aligned by characters.
class RussianHelp : public CLI::Formatter {
 public:
    RussianHelp();

 protected:
    std::string make_group(std::string group, bool is_positional,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_option(const CLI::Option* option, bool is_positional) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};

// Two lines: what is wrong, and where more is told. `app` is the whole program, after its parse.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error);

}  // namespace tav::cli
