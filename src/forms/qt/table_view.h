// The list box, a table, as MakeControl (widget_control.h) has it made.
#pragma once

#include "forms/qt/widget_control.h"

namespace tav {

MadeControl MakeListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise);

}  // namespace tav
