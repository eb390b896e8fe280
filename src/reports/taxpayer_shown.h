// Whom the reports show in their headings.
#pragma once

#include <optional>

#include "common/text.h"

namespace tav {

struct ShownTaxpayer {
    Text inn;
    Text kpp;
    Text name;
};

// The taxpayer of the setting NameINNKPP ("name|INN|KPP"); no value when the setting is empty, and the
// documents' own fields are shown.
std::optional<ShownTaxpayer> ChosenTaxpayer();

}  // namespace tav
