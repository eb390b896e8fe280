// The list box and the combo box, as MakeControl (widget_control.h) has them made.
#pragma once

#include "forms/qt/widget_control.h"

namespace tav {

MadeControl MakeListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise);
MadeControl MakeComboBox(const ControlPlan& plan, QWidget* parent, const Raise& raise);

}  // namespace tav
