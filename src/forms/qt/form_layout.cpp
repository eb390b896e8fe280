#include "forms/qt/form_layout.h"

#include <QGridLayout>
#include <QLabel>

#include "forms/form_stretch.h"

namespace tav {
namespace {

QGridLayout& Grid(QWidget& container) {
    if (container.layout() == nullptr) new QGridLayout(&container);
    return static_cast<QGridLayout&>(*container.layout());
}

// Where nothing grows, the spare room goes after the last row or column, not between the controls.
void LetGrow(QGridLayout& grid, const std::vector<bool>& lines, void (QGridLayout::*set)(int, int)) {
    bool any = false;
    const int count = static_cast<int>(lines.size());
    for (int i = 0; i < count; ++i) {
        if (!lines[static_cast<std::size_t>(i)]) continue;
        (grid.*set)(i, 1);
        any = true;
    }
    if (!any) (grid.*set)(count, 1);
}

void LetGrow(QWidget& container, const Stretch& stretch) {
    LetGrow(Grid(container), stretch.rows, &QGridLayout::setRowStretch);
    LetGrow(Grid(container), stretch.columns, &QGridLayout::setColumnStretch);
}

// What does not grow itself keeps its size in a row or column that does; a label there may break its lines,
// and a text that is set later does not widen the window.
void Align(const ControlQt& control, const Stretch& stretch) {
    constexpr int kLabelCharacters = 30;
    const Place& place = control.plan().place;
    QWidget* widget = control.widget();
    const bool wide = stretch.Wide(place);
    const bool high = stretch.rows[static_cast<std::size_t>(place.row)];
    if (control.plan().kind == ControlKind::Label) {
        auto& label = static_cast<QLabel&>(*widget);
        label.setWordWrap(wide);
        if (wide) label.setMinimumWidth(CharacterSize(label, kLabelCharacters, 0).width());
        if (high) label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    } else if (!GrowthOf(control.plan()).width) {
        Qt::Alignment alignment;
        if (wide) alignment |= Qt::AlignLeft;
        if (high) alignment |= Qt::AlignTop;
        Grid(*widget->parentWidget()).setAlignment(widget, alignment);
    }
}

}  // namespace

void LayOut(QWidget& window, std::span<const ControlPlan> plans, std::span<const MadeControl> controls) {
    const auto stretches = StretchOf(plans);
    LetGrow(window, stretches.at({}));
    for (const MadeControl& control : controls) {
        const ControlPlan& plan = control->plan();
        if (control->widget() == nullptr) continue;
        if (plan.hidden) {
            control->widget()->hide();
            continue;
        }
        Grid(*control->widget()->parentWidget())
            .addWidget(control->widget(), plan.place.row, plan.place.column, 1, plan.place.column_span);
        if (plan.kind == ControlKind::Frame) LetGrow(*control->widget(), stretches.at(plan.name));
        Align(*control, stretches.at(plan.place.parent));
    }
}

}  // namespace tav
