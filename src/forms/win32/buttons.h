// Buttons, buttons with pictures and check boxes, as MakeControl (controls.h) has them made.
#pragma once

#include "forms/win32/control.h"

namespace tav {

MadeControl MakeButton(const ControlPlan& plan, std::size_t index, FormHost& host);
MadeControl MakePictureButton(const ControlPlan& plan, std::size_t index, FormHost& host);
MadeControl MakeCheckBox(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
