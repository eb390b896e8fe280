// The list box and the combo box, as MakeControl (controls.h) has them made.
#pragma once

#include "forms/win32/control.h"

namespace tav {

MadeControl MakeListBox(const ControlPlan& plan, std::size_t index, FormHost& host);
MadeControl MakeComboBox(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
