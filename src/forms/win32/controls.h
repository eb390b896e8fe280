// All kinds of controls: the plain ones, and the table that finds the others.
#pragma once

#include "forms/win32/control.h"

namespace tav {

// By the plan's kind, with the plan's caption and tool-tip. `index` is the control's place in the plan.
MadeControl MakeControl(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
