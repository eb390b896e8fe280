// tav start, view_v, view_a, view_v_id: the operations of the component as a host calls them.

#include <memory>

#include "commands.h"
#include "common/regional.h"
#include "forms/forms.h"
#include "host/open_class.h"
#include "reports/summary_documents.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "terminal_output.h"
#include "ui/screen.h"

namespace tav::cli {
namespace {

struct WindowOptions {
    std::string inn;
    std::string kpp;
    std::string date;
    bool import_at_once = false;
    std::int16_t id = 0;
};

void ServeWindows() {
    if (ToolkitLoaded()) CurrentToolkit().RunUntilClosed();
}

// Without --inn and --kpp, as a person starts it from a menu, the taxpayer is that of the setting. A person who
// sees no terminal is told by a window what is missing.
void Start(WindowOptions options) {
    if (options.inn.empty() != options.kpp.empty()) throw WrongUsage("нужны и --inn, и --kpp");
    if (options.inn.empty()) {
        const NamedTaxpayer taxpayer = TaxpayerSetting();
        options.inn = ToUtf8(taxpayer.inn);
        options.kpp = ToUtf8(taxpayer.kpp);
    }
    if (options.inn.empty() || options.kpp.empty()) {
        UseWindowsIfAny();
        ShowMessage(u"tav start",
                    u"Не указан налогоплательщик: нужны --inn и --kpp или параметр NameINNKPP.");
        return;
    }
    Date date = OpenClass::kNoDateLimit;
    if (!options.date.empty()) {
        const auto given = ParseDate(FromUtf8(options.date));
        if (!given) throw WrongUsage("--date: " + options.date + " — не дата (дд.мм.гггг)");
        date = *given;
    }
    StartedFor().import = options.import_at_once;
    OpenClass().start(FromUtf8(options.inn), FromUtf8(options.kpp), date);
    ServeWindows();
}

void View(void (OpenClass::*view)(TextView, TextView), const WindowOptions& options) {
    RequireOneInn(options.inn);
    OpenClass component;
    (component.*view)(FromUtf8(options.inn), FromUtf8(options.kpp));
    if (!LastSummary().path.empty()) PrintLine(LastSummary().path);
    ServeWindows();
}

}  // namespace

void AddWindowCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<WindowOptions>();
    const auto add = [&](const char* name, const char* help) -> CLI::App& {
        CLI::App& command = *app.add_subcommand(name, help);
        AddDatabaseOptions(command, context);
        return command;
    };

    CLI::App& start =
        add("start", "Главное окно; без --inn и --kpp — налогоплательщика из параметра NameINNKPP");
    AddTaxpayerOptions(start, options->inn, options->kpp, false);
    start.add_option("--date", options->date, "Рабочая дата, дд.мм.гггг")->type_name("ДАТА");
    start.add_flag("--import", options->import_at_once, "Сразу импортировать и закрыть окно");
    start.callback([options] { Start(*options); });

    CLI::App& statements = add("view_v", "Сводная справка по выпискам и окно выбора периода");
    AddTaxpayerOptions(statements, options->inn, options->kpp, true);
    statements.callback([options] { View(&OpenClass::view_v, *options); });

    CLI::App& acts = add("view_a", "Сводная справка по актам и окно выбора периода");
    AddTaxpayerOptions(acts, options->inn, options->kpp, true);
    acts.callback([options] { View(&OpenClass::view_a, *options); });

    CLI::App& statement = add("view_v_id", "Выписка по её номеру в базе данных, сразу открытая");
    statement.add_option("НОМЕР", options->id, "Номер из tav list")->required();
    statement.callback([options] { OpenClass().view_v_id(options->id); });
}

}  // namespace tav::cli
