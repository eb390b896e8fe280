// tav completion, manual: what the package of the program has beside it, of the commands themselves.

#include <algorithm>
#include <memory>

#include "command_model.h"
#include "commands.h"
#include "common/guard.h"
#include "terminal_output.h"

namespace tav::cli {

void AddDescribeCommands(CLI::App& app, Context&) {
    const auto print = [](const std::string& text) { Guarded(u"Описание команд", [&] { Print(text); }); };
    const auto shell = std::make_shared<std::string>();
    CLI::App& completion =
        *app.add_subcommand("completion", "Дополнение команд по Tab — на стандартный вывод");
    completion.add_option("ОБОЛОЧКА", *shell, "bash или zsh")->required();
    completion.callback([&app, shell, print] {
        const std::vector<Shell>& shells = Shells();
        const auto known =
            std::find_if(shells.begin(), shells.end(), [&](const Shell& one) { return one.name == *shell; });
        if (known == shells.end()) throw WrongUsage("ОБОЛОЧКА — bash или zsh, а не " + *shell);
        print(known->completion(CommandsOf(app)));
    });
    CLI::App& manual =
        *app.add_subcommand("manual", "Страница руководства tav(1) в формате troff — на стандартный вывод");
    manual.callback([&app, print] { print(ManualPage(CommandsOf(app))); });
}

}  // namespace tav::cli
