// tav: the component for people without a host, and the way everything is tried from outside.
//
// Exit status 0: done; 1: a failure message was shown, or text of a document was dropped;
// 2: wrong usage; 130: cancelled by Ctrl-C.

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "commands.h"
#include "common/guard.h"
#include "common/regional.h"
#include "jet/file/locked_database.h"
#include "platform/files.h"
#include "platform/terminal.h"
#include "settings/settings.h"
#include "terminal_output.h"
#include "usage.h"

namespace tav::cli {
namespace {

constexpr std::int64_t kLongestPatience = 86400;  // a day, in seconds

std::function<void(std::string)> NotEmpty(const std::string& name) {
    return [name](const std::string& value) {
        if (value.empty()) throw WrongUsage(name + ": пустое значение");
    };
}

// Outer blanks are no part of an INN or KPP.
CLI::Option& AddNumber(CLI::App& command, const std::string& name, std::string& target,
                       const std::string& meaning, const std::string& kind) {
    return *command.add_option(name, target, meaning)
                ->transform([](const std::string& typed) { return ToUtf8(Trim(FromUtf8(typed))); })
                ->each(NotEmpty(name))
                ->type_name(kind);
}

}  // namespace

CLI::Option& AddPath(CLI::App& command, const std::string& name, std::string& target,
                     const std::string& meaning) {
    return *command.add_option(name, target, meaning)->each(NotEmpty(name));
}

void AddDatabaseOptions(CLI::App& command, Context& context) {
    AddPath(command, "--database", context.database,
            "Файл базы данных (вместо PlX_Base.mdb в папке DataBasePath)")
        .type_name("ФАЙЛ")
        ->each([](const std::string& path) { UseDatabase(PathArgument(path)); });
    command
        .add_option("--wait", context.patience,
                    "Сколько секунд ждать, пока базу данных держит другая программа")
        ->type_name("СЕКУНД")
        ->each([](const std::string& seconds) {
            const auto number = ParseInteger(FromUtf8(seconds));
            if (!number || *number < 0 || *number > kLongestPatience)
                throw WrongUsage("--wait: нужно целое число секунд от 0 до 86400, а не " + seconds);
            jet::SetPatience(std::chrono::seconds(*number));
        });
}

void AddTaxpayerOptions(CLI::App& command, std::string& inn, std::string& kpp, bool required) {
    AddNumber(command, "--inn", inn, "ИНН налогоплательщика; несколько — через «|»", "ИНН")
        .required(required);
    AddNumber(command, "--kpp", kpp, "КПП налогоплательщика; двадцать нулей — все подразделения", "КПП")
        .required(required);
}

void RequireOneInn(const std::string& inn) {
    if (inn.find('|') != inn.npos)
        throw WrongUsage("справка делается для одного ИНН, а указано несколько: " + inn);
}

Text PathArgument(const std::string& typed) {
    return UserPath(FromUtf8(typed));
}

namespace {

int Run(std::vector<std::string> arguments) {
    CLI::App app("Импорт актов сверки и выписок операций, полученных из ТАВ, в базу данных и справки по ним",
                 "tav");
    app.formatter(std::make_shared<RussianHelp>());
    app.group("Команды");
    app.set_help_flag("-h,--help", "Показать эту справку");
    app.set_version_flag("--version", "tav " TAV_VERSION, "Показать версию программы");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // "/a" is a path everywhere
    TerminalBox box;
    const ScopedMessageBox scope(box);
    Context context{box};
    AddDatabaseCommand(app, context);
    AddSettingsCommand(app, context);
    AddImportCommands(app, context);
    AddConvertCommand(app, context);
    AddListCommand(app, context);
    AddReportCommand(app, context);
    AddClearCommand(app, context);
    AddWindowCommands(app, context);
    AddDescribeCommands(app, context);

    try {
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        std::fputs(WhatIsWrong(app, error).c_str(), stderr);
        return 2;
    } catch (...) {
        ShowFailure(u"tav", CurrentFailure());
    }
    if (box.failed() || context.incomplete) return 1;
    return context.cancelled ? 130 : 0;
}

}  // namespace
}  // namespace tav::cli

int main(int argc, char** argv) {
    const tav::Terminal terminal(argc, argv);
    return tav::cli::Run(terminal.arguments());
}
