// What stands in the main window, and where.
#pragma once

#include "platform/forms.h"

namespace tav {

extern const FormPlan kMainPlan;

}  // namespace tav
