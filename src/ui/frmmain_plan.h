// What the main window holds, and where.
#pragma once

#include "forms/forms.h"

namespace tav {

extern const FormPlan kMainPlan;

}  // namespace tav
