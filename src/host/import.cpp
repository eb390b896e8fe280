#include "host/import.h"

#include "common/failure.h"
#include "convert/check_xml.h"
#include "db/constr_tab_type_oper.h"
#include "platform/environment.h"
#include "settings/session.h"
#include "settings/settings.h"

namespace tav {
namespace {

// Events are processed while files are read, so an import can be asked for while one runs; it returns at
// once.
class RunningImport {
 public:
    RunningImport() : first_(!running_) { running_ = true; }
    ~RunningImport() {
        if (first_) running_ = false;
    }
    RunningImport(const RunningImport&) = delete;
    RunningImport& operator=(const RunningImport&) = delete;

    bool first() const { return first_; }

 private:
    static inline bool running_ = false;
    bool first_;
};

}  // namespace

ImportFolders ChooseFolders(TextView import_folder, TextView move_folder) {
    ImportFolders folders{Text(import_folder), Text(move_folder)};
    if (folders.import.empty()) folders.import = SettingText(u"ImportPath");
    if (folders.import.empty() || !folders.move_to.empty() || !SettingTruth(u"ChkOut")) return folders;
    folders.move_to = SettingText(u"OutPath");
    if (folders.move_to.empty()) folders.move_to = TempVariable();
    if (folders.move_to.empty()) throw Failure(RunTimeError::PathNotFound, u"OutPath, TEMP");
    return folders;
}

ImportResult RunImport(const ImportFolders& folders, TextView inn, TextView kpp) {
    ImportResult result;
    const RunningImport running;
    if (!running.first() || folders.import.empty() || !PassCancelGuard()) return result;
    const Text catalogue = CheckXml(folders.import);
    if (catalogue.empty()) {
        result.outcome = CancelStamp() != 0 ? ImportOutcome::Cancelled : ImportOutcome::NoCatalogue;
        return result;
    }
    result.load = LoadFromXml(catalogue, getbase(), inn, kpp, folders.move_to);
    ConstrTabTypeOper(getbase());
    result.outcome = ImportOutcome::Done;
    return result;
}

}  // namespace tav
