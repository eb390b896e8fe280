// What the controls of a form are called by programs that read windows out to those who do not see them.
#pragma once

#include <span>
#include <vector>

#include "forms/forms.h"

namespace tav {

// Whether a caption says something: "..." does not.
bool HasWords(TextView caption);

// In the plan's order. Empty for what its own text names: frames, labels, and what has a caption in words. A
// button with a picture or dots is called by its tool-tip. The rest is called by the label or check box right
// before it in its frame, else by the frame, or by the frame around a frame that has no caption.
std::vector<TextView> NamesForReaders(std::span<const ControlPlan> plans);

}  // namespace tav
