#include "common/regional_form.h"

namespace tav {

const RegionalForm& CurrentRegionalForm() {
    static constexpr RegionalForm kRussian;
    return kRussian;
}

}  // namespace tav
