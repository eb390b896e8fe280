// What stands in the main window, and where.
#pragma once

#include "forms/forms.h"

namespace tav {

extern const FormPlan kMainPlan;

}  // namespace tav
