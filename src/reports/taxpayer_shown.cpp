#include "reports/taxpayer_shown.h"

#include "common/concat.h"
#include "common/get_next.h"
#include "settings/settings.h"

namespace tav {

std::optional<ShownTaxpayer> ChosenTaxpayer() {
    const Text setting = SettingText(u"NameINNKPP");
    if (setting.empty()) return std::nullopt;
    // The first element goes to the end of the list; what remains after INN and KPP is the name.
    TextView list = setting;
    const TextView first = GetNext(list, u"|");
    const Text turned = Concat(list, u"|", first);
    TextView rest = turned;
    ShownTaxpayer taxpayer;
    taxpayer.inn = GetNext(rest, u"|");
    taxpayer.kpp = GetNext(rest, u"|");
    taxpayer.name = rest;
    return taxpayer;
}

}  // namespace tav
