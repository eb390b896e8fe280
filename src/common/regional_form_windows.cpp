#include <windows.h>

#include "common/regional_form.h"

namespace tav {
namespace {

char16_t FirstOf(LCTYPE what, char16_t otherwise) {
    wchar_t text[8] = {};
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, what, text, 8);
    return length > 1 ? static_cast<char16_t>(text[0]) : otherwise;
}

}  // namespace

const RegionalForm& CurrentRegionalForm() {
    static const RegionalForm form = {FirstOf(LOCALE_SDECIMAL, RegionalForm().decimal),
                                      FirstOf(LOCALE_STHOUSAND, RegionalForm().group)};
    return form;
}

}  // namespace tav
