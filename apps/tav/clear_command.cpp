// tav clear: removes documents from the database.

#include <memory>

#include "commands.h"
#include "db/clearbase.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {

void AddClearCommand(CLI::App& app, Context& context) {
    struct Options {
        std::string inn;
        std::string kpp;
        bool all = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& clear =
        *app.add_subcommand("clear", "Удалить из базы данных документы налогоплательщика или все");
    AddTaxpayerOptions(clear, options->inn, options->kpp, false);
    clear.add_flag("--all", options->all, "Документы всех налогоплательщиков");
    AddDatabaseOptions(clear, context);
    clear.callback([options] {
        const bool inn = !options->inn.empty();
        const bool kpp = !options->kpp.empty();
        if (inn != kpp || inn == options->all) throw WrongUsage("нужны --inn и --kpp или --all");
        const auto removed = options->all
                                 ? clearbaseAll(getbase())
                                 : clearbase(getbase(), FromUtf8(options->inn), FromUtf8(options->kpp));
        if (removed) PrintLine(u"Удалено документов: " + Digits(*removed));
    });
}

}  // namespace tav::cli
