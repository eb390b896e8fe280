#include "forms/form_stretch.h"

#include <algorithm>

namespace tav {
namespace {

using Grids = std::map<TextView, Stretch>;

bool Any(const std::vector<bool>& flags) {
    return std::find(flags.begin(), flags.end(), true) != flags.end();
}

Grids EmptyGrids(std::span<const ControlPlan> plans) {
    Grids grids;
    grids[{}];
    for (const ControlPlan& plan : plans) {
        if (plan.kind == ControlKind::Timer) continue;
        const Place& place = plan.place;
        if (plan.kind == ControlKind::Frame) grids[plan.name];
        Stretch& grid = grids[place.parent];
        const auto rows = static_cast<std::size_t>(place.row) + 1;
        const auto columns =
            static_cast<std::size_t>(place.column) + static_cast<std::size_t>(place.column_span);
        grid.rows.resize(std::max(grid.rows.size(), rows));
        grid.columns.resize(std::max(grid.columns.size(), columns));
    }
    return grids;
}

}  // namespace

Growth GrowthOf(const ControlPlan& plan) {
    switch (plan.kind) {
        case ControlKind::Label:
            return {plan.caption.empty(), false};  // its text is set later, and may be long
        case ControlKind::ListBox:
        case ControlKind::TreeView:
            return {true, true};
        case ControlKind::Memo:
        case ControlKind::TextBox:
        case ControlKind::ComboBox:
        case ControlKind::ProgressBar:
        case ControlKind::Frame:
            return {true, false};
        default:
            return {false, false};
    }
}

bool Stretch::Wide(const Place& place) const {
    const auto first = columns.begin() + place.column;
    return std::find(first, first + place.column_span, true) != first + place.column_span;
}

Grids StretchOf(std::span<const ControlPlan> plans) {
    Grids grids = EmptyGrids(plans);
    for (const bool several : {false, true}) {
        for (const ControlPlan& plan : plans) {
            const Place& place = plan.place;
            if (!GrowthOf(plan).width || (place.column_span > 1) != several) continue;
            Stretch& grid = grids.at(place.parent);
            if (!grid.Wide(place)) {
                grid.columns[static_cast<std::size_t>(place.column)] = true;
            }
        }
    }
    // Backwards, because what is in a frame comes after it in the
    // plan: a row that grows there makes the frame's row grow.
    for (auto plan = plans.rbegin(); plan != plans.rend(); ++plan) {
        const bool grows =
            plan->kind == ControlKind::Frame ? Any(grids.at(plan->name).rows) : GrowthOf(*plan).height;
        if (grows) grids.at(plan->place.parent).rows[static_cast<std::size_t>(plan->place.row)] = true;
    }
    return grids;
}

}  // namespace tav
