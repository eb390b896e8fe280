// Which rows and columns of a form take the spare room. Every toolkit lays forms out by these rules.
#pragma once

#include <map>
#include <span>
#include <vector>

#include "forms/forms.h"

namespace tav {

// Which spare room a control takes. A frame grows in height when something in it does.
struct Growth {
    bool width;
    bool height;
};
Growth GrowthOf(const ControlPlan& plan);

// Of one grid: which of its rows and columns grow. A control that spans
// several columns widens the first of them, unless another already grows.
struct Stretch {
    std::vector<bool> rows;
    std::vector<bool> columns;

    // Whether a column of the place grows.
    bool Wide(const Place& place) const;
};

// By the name of the frame; empty for the window's own grid.
std::map<TextView, Stretch> StretchOf(std::span<const ControlPlan> plans);

}  // namespace tav
