#include "host/open_class.h"

#include <cmath>
#include <optional>
#include <utility>

#include "common/guard.h"
#include "common/on_left.h"
#include "common/regional.h"
#include "db/patience.h"
#include "forms/shell.h"
#include "load/run_import.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/get_vipis.h"
#include "reports/paper.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/frmFilter.h"
#include "ui/frmShortImport.h"
#include "ui/frmmain.h"
#include "ui/screen.h"

namespace tav {
namespace {

using Summarise = Text (*)(TextView database, TextView inn, TextView kpp, TextView export_folder,
                           const SummaryChoice& choice);

// Each of the class: what fails in it is shown once.
template <class Act>
void Operation(TextView title, Act&& act) {
    std::optional<OneBoxPerCause> one_box(std::in_place);
    const OnLeft left([&] { one_box.reset(); });
    Guarded(title, std::forward<Act>(act));
}

// The progress window goes with the operation, whatever ends that: the host may not serve its timer.
class ProgressGoes {
 public:
    ~ProgressGoes() { End(); }
    ProgressGoes() = default;
    ProgressGoes(const ProgressGoes&) = delete;
    ProgressGoes& operator=(const ProgressGoes&) = delete;

 private:
    static void End() {
        GuardedBy([] { Shared<frmShortImport>().CloseNow(); }, [](const Failure&) {});
    }
    const OnLeft left_{End};
};

// Without a screen the summary is written all the same, and the failure says where it is.
void View(Summarise summarise, TextView inn, TextView kpp) {
    UseWindowsIfAny();
    RefuseDuringImport();
    const DatabasePatience wait;
    const Text folder = ExportFolder();
    CurrentTaxpayer& current = Taxpayer();
    const bool another = current.inn != inn || current.kpp != kpp;
    current.inn = inn;
    current.kpp = kpp;
    // What the main window does, it does for the current taxpayer: so it shows no other.
    if (another) Shared<frmmain>().Renew();
    Text path;
    {
        const ProgressGoes progress;
        path = summarise(getbase(), inn, kpp, folder, {});
    }
    if (path.empty()) {
        ShowNothingToSumUp();
        return;
    }
    try {
        UseWindows();
        Shared<frmFilter>().Show();
    } catch (const Failure& failure) {
        throw failure.In(path);
    }
}

// The filter dialog, loaded though not shown, to own what the shell asks or says. It stays when somebody was
// shown it meanwhile.
class LoadedFilter {
 public:
    LoadedFilter() {
        if (mine_) form_.Load();
    }
    ~LoadedFilter() { End(); }
    LoadedFilter(const LoadedFilter&) = delete;
    LoadedFilter& operator=(const LoadedFilter&) = delete;
    frmFilter* operator->() const { return &form_; }

 private:
    void End() const {
        if (mine_ && !form_.Shown()) form_.Unload();
    }

    frmFilter& form_ = Shared<frmFilter>();
    const bool mine_ = !form_.Loaded();
    const OnLeft left_{[this] { End(); }};
};

}  // namespace

const Date OpenClass::kNoDateLimit = *DateFromCivil({2099, 1, 1});

void OpenClass::start(TextView inn, TextView kpp, Date vdm) {
    Operation(u"Ошибка в функции Start", [&] {
        Taxpayer() = {Text(Trim(inn)), Text(Trim(kpp)), FormatDate(Date{std::trunc(vdm.serial)})};
        UseWindows();
        Shared<frmmain>().Show();
    });
}

void OpenClass::view_v_id(std::int16_t id) {
    Operation(u"Ошибка в функции View_V_ID", [&] {
        const bool windows = UseWindowsIfAny();
        RefuseDuringImport();
        const DatabasePatience wait;
        const Text path = GetVipis(getbase(), id, ExportFolder());
        if (path.empty()) return;
        const Text document = ToOpen(path);
        windows ? LoadedFilter()->OpenDocument(document) : OpenDocument(document);
    });
}

void OpenClass::import(TextView inn, TextView kpp) {
    Operation(u"Ошибка в функции import", [&] {
        UseWindowsIfAny();
        const DatabasePatience wait;
        const ProgressGoes progress;
        RunImport(ChooseFolders({}, {}), inn, kpp);
        Shared<frmmain>().Refill();
    });
}

void OpenClass::view_v(TextView inn, TextView kpp) {
    Operation(u"Ошибка в функции View_V", [&] { View(GetFiles, Trim(inn), Trim(kpp)); });
}

void OpenClass::view_a(TextView inn, TextView kpp) {
    Operation(u"Ошибка в функции View_A", [&] { View(GetFilesAct, Trim(inn), Trim(kpp)); });
}

}  // namespace tav
