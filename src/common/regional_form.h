// How the numbers of the user's region are written: the Russian form on Linux, the user's own on Windows.
#pragma once

namespace tav {

struct RegionalForm {
    char16_t decimal = u',';
    char16_t group = u'\u00A0';  // besides spaces, which every region may have between digits
};

// Asked of the system once.
const RegionalForm& CurrentRegionalForm();

}  // namespace tav
