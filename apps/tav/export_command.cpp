// tav db export: the tables for other tools.

#include <memory>

#include "commands.h"
#include "common/guard.h"
#include "exports/export_csv.h"
#include "exports/export_sqlite.h"
#include "platform/environment.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

void Export(Context& context, const std::string& target,
            void (*write)(jet::Database& database, TextView target)) {
    constexpr TextView kTitle = u"Выгрузка базы данных";
    const InterruptWatch watch;
    const auto body = [&] {
        jet::Database database(getbase(), jet::Database::Access::Read);
        write(database, PathArgument(target));
        PrintLine(PathArgument(target));
    };
    GuardedBy(body, [&](const Failure& failure) {
        context.cancelled = InterruptWatch::Interrupted();
        if (!context.cancelled) ShowFailure(kTitle, failure);
        if (context.cancelled) ShowMessage(kTitle, u"Прервано пользователем.", MessageIcon::Information);
    });
}

}  // namespace

void AddExportCommand(CLI::App& db, Context& context) {
    struct Options {
        std::string file;
        std::string folder;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = *db.add_subcommand(
        "export", "Все таблицы для других программ: файл SQLite или файлы CSV; готовое не заменяется");
    AddPath(command, "ФАЙЛ", options->file, "Новая база данных SQLite");
    AddPath(command, "--csv", options->folder, "Новая папка, по файлу CSV (UTF-8) на таблицу")
        .type_name("ПАПКА");
    AddDatabaseOptions(command, context);
    command.callback([&context, options] {
        if (options->file.empty() == options->folder.empty()) throw WrongUsage("нужен ФАЙЛ или --csv ПАПКА");
        const bool csv = options->file.empty();
        Export(context, csv ? options->folder : options->file, csv ? ExportToCsv : ExportToSqlite);
    });
}

}  // namespace tav::cli
