// The commands of the program. Each function adds its command with its options to the parser; what the
// command does runs when the parser meets it, and returns through Context.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "common/text.h"
#include "terminal_output.h"

namespace tav::cli {

// What one run of the program has in common.
struct Context {
    TerminalBox& box;
    std::string database = {};  // --database
    std::string patience = {};  // --wait, in seconds
    bool cancelled = false;     // by Ctrl-C
    bool incomplete = false;    // text of a document was dropped, and told
};

// Wrong usage that the parser cannot see by itself (exit status 2).
class WrongUsage : public CLI::ParseError {
 public:
    explicit WrongUsage(const std::string& why) : CLI::ParseError("WrongUsage", why, 2) {}
};

void AddDatabaseCommand(CLI::App& app, Context& context);
// Of the command db.
void AddExportCommand(CLI::App& db, Context& context);
void AddSettingsCommand(CLI::App& app, Context& context);
void AddImportCommands(CLI::App& app, Context& context);
void AddConvertCommand(CLI::App& app, Context& context);
void AddListCommand(CLI::App& app, Context& context);
void AddReportCommand(CLI::App& app, Context& context);
void AddClearCommand(CLI::App& app, Context& context);
void AddWindowCommands(CLI::App& app, Context& context);
void AddDescribeCommands(CLI::App& app, Context& context);

// An option or argument that names a file or a folder; empty text is wrong usage.
CLI::Option& AddPath(CLI::App& command, const std::string& name, std::string& target,
                     const std::string& meaning);
// --database and --wait for a command that needs the database.
void AddDatabaseOptions(CLI::App& command, Context& context);
// --inn and --kpp, without outer blanks; empty text is wrong usage.
void AddTaxpayerOptions(CLI::App& command, std::string& inn, std::string& kpp, bool required);

// A summary is made for one taxpayer: wrong usage where several INNs are given.
void RequireOneInn(const std::string& inn);

// A path from the command line.
Text PathArgument(const std::string& typed);

}  // namespace tav::cli
