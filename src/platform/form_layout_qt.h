// Puts the controls of a form into the grids of its window and of its frames.
#pragma once

#include <span>

#include "platform/control_qt.h"

namespace tav {

void LayOut(QWidget& window, std::span<const MadeControl> controls);

}  // namespace tav
