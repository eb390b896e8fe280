// Puts the controls of a form into the grids of its window and of its frames.
#pragma once

#include <span>

#include "forms/qt/widget_control.h"

namespace tav {

// `controls` are those of `plans`, in their order.
void LayOut(QWidget& window, std::span<const ControlPlan> plans, std::span<const MadeControl> controls);

}  // namespace tav
