// tav import, status, scan, load: from a folder of documents to the database.

#include <memory>
#include <optional>

#include "account_output.h"
#include "commands.h"
#include "common/concat.h"
#include "common/guard.h"
#include "convert/check_xml.h"
#include "load/account_of_folder.h"
#include "load/run_import.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

struct ImportOptions {
    std::string inn;
    std::string kpp;
    std::string folder;
    std::string move_to;
    bool json = false;
    bool acts_as_xml = false;

    std::optional<bool> ActsAsXml() const { return acts_as_xml ? std::optional(true) : std::nullopt; }
};

// Runs `action` under a progress bar, with Ctrl-C as its cancel button. `action` tells whether it was
// cancelled.
template <class Action>
void WithProgress(Context& context, Action action) {
    TerminalProgress progress;
    const ScopedProgress scope(progress);
    const InterruptWatch watch;
    context.cancelled = action();
    if (context.cancelled) ShowMessage(u"Импорт", u"Прервано пользователем.", MessageIcon::Information);
}

void Tell(const ImportAccount& account, const ImportOptions& options) {
    (options.json ? PrintAccountAsJson : PrintAccount)(account);
}

// A folder that has to be there: named in the message when it is not, with the setting it comes from.
Text ExistingFolder(const Text& folder, TextView setting = {}) {
    if (FolderExists(folder)) return folder;
    const Text where = setting.empty() ? Text() : Concat(u" (параметр ", setting, u")");
    throw Failure(RunTimeError::PathNotFound, folder + where);
}

Text PathOrNothing(const std::string& typed) {
    return typed.empty() ? Text() : PathArgument(typed);
}

void NeedFolder(const ImportOptions& options) {
    if (!options.folder.empty() || !SettingText(u"ImportPath").empty()) return;
    throw WrongUsage("не задана папка документов: --folder ПАПКА или параметр ImportPath");
}

// The folder of the documents, of the option or of the setting.
Text DocumentsFolder(const ImportOptions& options) {
    if (!options.folder.empty()) return ExistingFolder(PathArgument(options.folder));
    return ExistingFolder(SettingText(u"ImportPath"), u"ImportPath");
}

void Import(Context& context, const ImportOptions& options) {
    NeedFolder(options);
    Guarded(u"Ошибка в функции import", [&] {
        ImportFolders folders = ChooseFolders(DocumentsFolder(options), PathOrNothing(options.move_to));
        folders.acts_as_xml = options.ActsAsXml();
        WithProgress(context, [&] {
            const ImportResult result = RunImport(folders, FromUtf8(options.inn), FromUtf8(options.kpp));
            context.incomplete = result.drops_text;
            const bool nothing = result.outcome == ImportOutcome::NoCatalogue && !context.box.failed();
            if (nothing || result.outcome == ImportOutcome::Done) Tell(result.account, options);
            return result.outcome == ImportOutcome::Cancelled;
        });
    });
}

void Status(const ImportOptions& options) {
    NeedFolder(options);
    Guarded(u"Состояние папки", [&] {
        Tell(AccountOfFolder(DocumentsFolder(options), getbase(), FromUtf8(options.inn),
                             FromUtf8(options.kpp), options.ActsAsXml()),
             options);
    });
}

void Scan(Context& context, const std::string& folder, const ImportOptions& options) {
    Guarded(u"Ошибка в функции CheckXml", [&] {
        const Text path = ExistingFolder(PathArgument(folder));
        WithProgress(context, [&] {
            const ScanAccount scan = ScanFolder(path, options.ActsAsXml());
            context.incomplete = scan.DropsText();
            if (!scan.catalogue.empty()) PrintLine(scan.catalogue);
            return scan.catalogue.empty() && CancelStamp() != 0;
        });
    });
}

void Load(Context& context, const std::string& catalogue, const ImportOptions& options) {
    WithProgress(context, [&] {
        Tell(LoadCatalogue(PathArgument(catalogue), FromUtf8(options.inn), FromUtf8(options.kpp),
                           PathOrNothing(options.move_to)),
             options);
        return false;
    });
}

void AddActsOption(CLI::App& command, ImportOptions& options) {
    command.add_flag("--acts-xml", options.acts_as_xml, "Читать и акты в формате XML (файлы *.xml)");
}

void AddJsonOption(CLI::App& command, ImportOptions& options) {
    command.add_flag("--json", options.json, "Что стало с каждым файлом — в виде JSON");
}

}  // namespace

void AddImportCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<ImportOptions>();
    const auto place = std::make_shared<std::string>();

    CLI::App& import_command =
        *app.add_subcommand("import", "Прочитать папку документов и загрузить новые в базу данных");
    AddTaxpayerOptions(import_command, options->inn, options->kpp, true);
    AddPath(import_command, "--folder", options->folder, "Папка документов (вместо ImportPath)")
        .type_name("ПАПКА");
    AddPath(import_command, "--move-to", options->move_to, "Куда перенести загруженные (вместо OutPath)")
        .type_name("ПАПКА");
    AddActsOption(import_command, *options);
    AddJsonOption(import_command, *options);
    AddDatabaseOptions(import_command, context);
    import_command.callback([&context, options] { Import(context, *options); });

    CLI::App& status = *app.add_subcommand(
        "status", "Что стало с каждым файлом папки документов; ничего не загружается и не пишется");
    AddTaxpayerOptions(status, options->inn, options->kpp, false);
    AddPath(status, "--folder", options->folder, "Папка документов (вместо ImportPath)").type_name("ПАПКА");
    AddActsOption(status, *options);
    AddJsonOption(status, *options);
    AddDatabaseOptions(status, context);
    status.callback([options] { Status(*options); });

    CLI::App& scan = *app.add_subcommand(
        "scan", "Только прочитать папку: обновить её listfiles.xml и показать путь к нему");
    AddPath(scan, "ПАПКА", *place, "Папка документов").required();
    AddActsOption(scan, *options);
    scan.callback([&context, options, place] { Scan(context, *place, *options); });

    CLI::App& load = *app.add_subcommand("load", "Только загрузить listfiles.xml в базу данных");
    AddPath(load, "КАТАЛОГ", *place, "Путь к listfiles.xml").required();
    AddTaxpayerOptions(load, options->inn, options->kpp, true);
    AddPath(load, "--move-to", options->move_to, "Куда перенести загруженные документы").type_name("ПАПКА");
    AddJsonOption(load, *options);
    AddDatabaseOptions(load, context);
    load.callback([&context, options, place] { Load(context, *place, *options); });
}

}  // namespace tav::cli
