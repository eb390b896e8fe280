// The combo box, as MakeControl (controls.h) has it made.
#pragma once

#include "forms/win32/control.h"

namespace tav {

MadeControl MakeComboBox(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
