// tav report: writes a report and prints its path.

#include <memory>

#include "commands.h"
#include "common/guard.h"
#include "forms/shell.h"
#include "platform/environment.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/get_vipis.h"
#include "reports/paper.h"
#include "reports/summary_documents.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

struct ReportOptions {
    std::int32_t id = 0;
    std::string inn;
    std::string kpp;
    std::string folder;
    bool open = false;
    bool pdf = false;

    Text Folder() const { return folder.empty() ? ExportFolder() : PathArgument(folder); }
};

void Finish(const Text& path, const ReportOptions& options) {
    if (path.empty()) return;
    PrintLine(path);
    const Text document = ToOpen(path);
    if (options.pdf) PrintLine(document);
    if (options.open) Guarded(u"Справка", [&] { OpenDocument(document); });
}

void AddFolderOptions(CLI::App& command, ReportOptions& options, Context& context) {
    AddPath(command, "--to", options.folder, "Папка справок (вместо ExportPath)").type_name("ПАПКА");
    command.add_flag("--open", options.open, "Открыть готовую справку");
    command
        .add_flag("--pdf", options.pdf, "Сделать рядом и PDF: альбомные листы A4 для печати (только Linux)")
        ->each([](const std::string&) { MakePaperCopies([] { return true; }); });
    AddDatabaseOptions(command, context);
}

using SummaryReport = Text (*)(TextView database, TextView inn, TextView kpp, TextView export_folder,
                               const SummaryChoice& choice);

void AddSummary(CLI::App& report, const char* name, const char* meaning, SummaryReport summary,
                const std::shared_ptr<ReportOptions>& options, Context& context) {
    CLI::App& command = *report.add_subcommand(name, meaning);
    AddTaxpayerOptions(command, options->inn, options->kpp, true);
    AddFolderOptions(command, *options, context);
    command.callback([&context, options, summary] {
        RequireOneInn(options->inn);
        TerminalProgress progress;
        const ScopedProgress scope(progress);
        const InterruptWatch watch;
        const Text path =
            summary(getbase(), FromUtf8(options->inn), FromUtf8(options->kpp), options->Folder(), {});
        context.cancelled = CancelStamp() != 0;
        if (path.empty()) ShowNothingToSumUp();
        Finish(path, *options);
    });
}

}  // namespace

void AddReportCommand(CLI::App& app, Context& context) {
    CLI::App& report = *app.add_subcommand("report", "Сформировать справку и показать путь к ней");
    report.require_subcommand(1);
    const auto options = std::make_shared<ReportOptions>();
    CLI::App& statement =
        *report.add_subcommand("statement", "Справка по одной выписке (её номер показывает tav list)");
    statement.add_option("НОМЕР", options->id, "Номер выписки")->required();
    AddFolderOptions(statement, *options, context);
    statement.callback([options] { Finish(GetVipis(getbase(), options->id, options->Folder()), *options); });
    AddSummary(report, "statements", "Сводная справка по выпискам операций", GetFiles, options, context);
    AddSummary(report, "acts", "Сводная справка по актам совместной сверки", GetFilesAct, options, context);
}

}  // namespace tav::cli
