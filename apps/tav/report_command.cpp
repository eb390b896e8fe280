// tav report: writes a report and prints its path.

#include <memory>

#include "commands.h"
#include "common/guard.h"
#include "platform/shell.h"
#include "reports/get_vipis.h"
#include "settings/settings.h"
#include "terminal.h"

namespace tav::cli {
namespace {

struct ReportOptions {
    std::int32_t id = 0;
    std::string folder;
    bool open = false;
};

void Finish(const Text& path, const ReportOptions& options) {
    if (path.empty()) return;
    PrintLine(path);
    if (options.open && !OpenDocument(path)) ShowMessage(u"Справка", u"Не удалось открыть документ: " + path);
}

}  // namespace

void AddReportCommand(CLI::App& app, Context& context) {
    CLI::App& report = *app.add_subcommand("report", "Сформировать справку и показать путь к ней");
    report.require_subcommand(1);
    const auto options = std::make_shared<ReportOptions>();
    CLI::App& statement =
        *report.add_subcommand("statement", "Справка по одной выписке (её номер показывает tav list)");
    statement.add_option("ID", options->id, "Номер выписки")->required();
    statement.add_option("--to", options->folder, "Папка справок (вместо ExportPath)")->type_name("DIR");
    statement.add_flag("--open", options->open, "Открыть готовую справку");
    AddDatabaseOption(statement, context);
    statement.callback([options] {
        const Text folder = options->folder.empty() ? ExportFolder() : PathArgument(options->folder);
        Finish(GetVipis(getbase(), options->id, folder), *options);
    });
}

}  // namespace tav::cli
