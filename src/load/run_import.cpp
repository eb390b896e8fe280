#include "load/run_import.h"

#include <memory>

#include "common/aside.h"
#include "common/failure.h"
#include "common/guard.h"
#include "common/on_left.h"
#include "convert/check_xml.h"
#include "load/account_maker.h"
#include "load/constr_tab_type_oper.h"
#include "load/stored_documents.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/work_folder.h"
#include "settings/session.h"
#include "settings/settings.h"

namespace tav {
namespace {

bool running = false;
Text running_inn;

class RunningImport {
 public:
    explicit RunningImport(TextView inn) {
        running = true;
        running_inn = Trim(inn);
    }
    ~RunningImport() {
        running = false;
        running_inn.clear();
    }
    RunningImport(const RunningImport&) = delete;
    RunningImport& operator=(const RunningImport&) = delete;

 private:
    const OnLeft left_{ForgetImport};
};

}  // namespace

ImportFolders ChooseFolders(TextView import_folder, TextView move_folder) {
    ImportFolders folders{Text(import_folder), Text(move_folder)};
    if (folders.import.empty()) folders.import = SettingText(u"ImportPath");
    if (folders.import.empty() || !folders.move_to.empty() || !SettingTruth(u"ChkOut")) return folders;
    folders.move_to = SettingText(u"OutPath");
    if (folders.move_to.empty()) folders.move_to = TempVariable();
    if (folders.move_to.empty())
        throw Failure(RunTimeError::PathNotFound, u"OutPath (параметр не задан), TEMP");
    return folders;
}

bool ImportRunning() {
    return running;
}

Text RunningInn() {
    return running_inn;
}

void ForgetImport() {
    const bool cancelled = running || AsideRuns();
    AbandonAside();
    if (cancelled) CancelStamp() = 0;  // it is not the next one's
    running = false;
    running_inn.clear();
}

void RefuseDuringImport() {
    if (running) throw FileInUse(getbase());
}

ScanAccount ScanFolder(TextView folder, std::optional<bool> acts_as_xml) {
    StoredDocuments stored(getbase());
    return CheckXml(folder, acts_as_xml,
                    [&](const Text& name, std::string_view entry) { return stored.HasOther(name, entry); });
}

ImportAccount LoadCatalogue(TextView catalogue, TextView inn, TextView kpp, TextView move_folder,
                            const ScanAccount* scan) {
    // The scan has seen to the documents' folder.
    GuardedBy(
        [&] {
            for (const Text& folder : {Text(move_folder), FolderOf(getbase()), ExportFolder()})
                RemoveLeftovers(folder);
        },
        [](const Failure&) {});
    ImportAccount account = LoadFromXml(catalogue, getbase(), inn, kpp, move_folder, scan);
    if (!account.database_failed || account.documents > 0) ConstrTabTypeOper(getbase());
    return account;
}

namespace {

// An import has all that it needs by itself: the thread that waits for it may end.
struct Import {
    ImportFolders folders;
    Text inn;
    Text kpp;
    ImportResult result;
};

ImportResult ScanAndLoad(const ImportFolders& folders, TextView inn, TextView kpp) {
    ImportResult result;
    const ScanAccount scan = ScanFolder(folders.import, folders.acts_as_xml);
    result.drops_text = scan.DropsText();
    const Text& catalogue = scan.catalogue;
    if (catalogue.empty()) {
        result.outcome = CancelStamp() != 0 ? ImportOutcome::Cancelled : ImportOutcome::NoCatalogue;
        result.account.notices = NoticesOf(scan);
        return result;
    }
    result.account = LoadCatalogue(catalogue, inn, kpp, folders.move_to, &scan);
    result.outcome = ImportOutcome::Done;
    return result;
}

}  // namespace

ImportResult RunImport(const ImportFolders& folders, TextView inn, TextView kpp) {
    if (running || folders.import.empty()) return {};
    FinishAside();  // whose cancel is not this import's
    if (running || !PassCancelGuard()) return {};
    const RunningImport this_one(inn);
    const auto import = std::make_shared<Import>(Import{folders, Text(inn), Text(kpp), {}});
    RunAside([import] { import->result = ScanAndLoad(import->folders, import->inn, import->kpp); },
             RequestCancel);
    return std::move(import->result);
}

}  // namespace tav
