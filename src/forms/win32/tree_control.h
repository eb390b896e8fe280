// The tree, as MakeControl (controls.h) has it made.
#pragma once

#include "forms/win32/control.h"

namespace tav {

MadeControl MakeTreeView(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
