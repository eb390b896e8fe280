#include "host/open_class.h"

#include "common/guard.h"
#include "db/run_import.h"
#include "platform/shell.h"
#include "reports/get_vipis.h"
#include "settings/settings.h"

namespace tav {

void OpenClass::view_v_id(std::int16_t id) {
    Guarded(u"Ошибка в функции View_V_ID", [&] {
        const Text path = GetVipis(getbase(), id, ExportFolder());
        if (!path.empty() && !OpenDocument(path)) throw Failure(RunTimeError::PathFileAccess, path);
    });
}

void OpenClass::import(TextView inn, TextView kpp) {
    Guarded(u"Ошибка в функции import", [&] { RunImport(ChooseFolders({}, {}), inn, kpp); });
}

}  // namespace tav
