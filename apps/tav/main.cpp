// tav: the component for people without a host, and the way everything is tried from outside.
//
// Exit status 0: done; 1: a failure message was shown; 2: wrong usage; 130: cancelled by Ctrl-C.

#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "common/guard.h"
#include "platform/files.h"
#include "platform/terminal.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {

void AddDatabaseOption(CLI::App& command, Context& context) {
    command
        .add_option("--database", context.database,
                    "Файл базы данных (вместо PlX_Base.mdb в папке DataBasePath)")
        ->type_name("FILE")
        ->each([](const std::string& path) {
            if (path.empty()) throw WrongUsage("--database: пустое имя файла");
            UseDatabase(PathArgument(path));
        });
}

void AddTaxpayerOptions(CLI::App& command, std::string& inn, std::string& kpp, bool required,
                        const std::string& kpp_help) {
    command.add_option("--inn", inn, "ИНН налогоплательщика")->type_name("INN")->required(required);
    command.add_option("--kpp", kpp, kpp_help)->type_name("KPP")->required(required);
}

Text PathArgument(const std::string& typed) {
    return UserPath(FromUtf8(typed));
}

namespace {

int Run(std::vector<std::string> arguments) {
    CLI::App app("Импорт актов сверки и выписок операций, полученных из ТАВ, в базу данных и справки по ним",
                 "tav");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // "/a" is a path everywhere
    Context context;
    AddDatabaseCommand(app, context);
    AddSettingsCommand(app, context);
    AddImportCommands(app, context);
    AddConvertCommand(app, context);
    AddListCommand(app, context);
    AddReportCommand(app, context);
    AddClearCommand(app, context);
    AddWindowCommands(app, context);

    TerminalBox box;
    const ScopedMessageBox scope(box);
    try {
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        std::fprintf(stderr, "tav: %s\nПодробнее: tav --help\n", error.what());
        return 2;
    } catch (...) {
        ShowFailure(u"tav", CurrentFailure());
    }
    if (box.failed()) return 1;
    return context.cancelled ? 130 : 0;
}

}  // namespace
}  // namespace tav::cli

int main(int argc, char** argv) {
    const tav::Terminal terminal(argc, argv);
    return tav::cli::Run(terminal.arguments());
}
