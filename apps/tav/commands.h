// The commands of the program. Each function adds its command with its options to the parser; what the
// command does runs when the parser meets it, and returns through Context.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "common/text.h"

namespace tav::cli {

// What one run of the program has in common.
struct Context {
    std::string database;    // --database
    bool cancelled = false;  // by Ctrl-C
};

// Wrong usage that the parser cannot see by itself (exit status 2).
class WrongUsage : public CLI::ParseError {
 public:
    explicit WrongUsage(const std::string& why) : CLI::ParseError("WrongUsage", why, 2) {}
};

void AddDatabaseCommand(CLI::App& app, Context& context);
void AddSettingsCommand(CLI::App& app, Context& context);
void AddImportCommands(CLI::App& app, Context& context);
void AddConvertCommand(CLI::App& app, Context& context);
void AddListCommand(CLI::App& app, Context& context);
void AddReportCommand(CLI::App& app, Context& context);
void AddClearCommand(CLI::App& app, Context& context);
void AddWindowCommands(CLI::App& app, Context& context);

// --database for a command that needs the database.
void AddDatabaseOption(CLI::App& command, Context& context);
// --inn and --kpp.
void AddTaxpayerOptions(
    CLI::App& command, std::string& inn, std::string& kpp, bool required,
    const std::string& kpp_help = "КПП налогоплательщика; двадцать нулей — все подразделения");

// A path from the command line.
Text PathArgument(const std::string& typed);

}  // namespace tav::cli
