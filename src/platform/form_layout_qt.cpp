#include "platform/form_layout_qt.h"

#include <QGridLayout>
#include <QLabel>

namespace tav {
namespace {

// Which room that is over a control takes.
struct Growth {
    bool width;
    bool height;
};
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
            return {true, false};  // a frame grows in height when something in it does
        default:
            return {false, false};
    }
}

QGridLayout& Grid(QWidget& container) {
    if (container.layout() == nullptr) new QGridLayout(&container);
    return static_cast<QGridLayout&>(*container.layout());
}

bool AnyColumnGrows(const QGridLayout& grid, const Place& place) {
    for (int i = 0; i < place.column_span; ++i) {
        if (grid.columnStretch(place.column + i) > 0) return true;
    }
    return false;
}

// A control over several columns widens the first of them, unless another already grows.
void LetColumnsGrow(std::span<const MadeControl> controls) {
    for (const bool several : {false, true}) {
        for (const MadeControl& control : controls) {
            const Place& place = control->plan().place;
            if (!GrowthOf(control->plan()).width || (place.column_span > 1) != several) continue;
            QGridLayout& grid = Grid(*control->widget()->parentWidget());
            if (!AnyColumnGrows(grid, place)) grid.setColumnStretch(place.column, 1);
        }
    }
}

// Backwards, because what is in a frame stands behind it in the plan: a grown row makes the frame's row grow.
void LetRowsGrow(std::span<const MadeControl> controls) {
    for (auto control = controls.rbegin(); control != controls.rend(); ++control) {
        const ControlPlan& plan = (*control)->plan();
        QWidget* widget = (*control)->widget();
        if (widget == nullptr) continue;
        bool grows = GrowthOf(plan).height;
        if (plan.kind == ControlKind::Frame) {
            const QGridLayout& inside = Grid(*widget);
            for (int row = 0; row < inside.rowCount(); ++row) grows = grows || inside.rowStretch(row) > 0;
        }
        if (grows) Grid(*widget->parentWidget()).setRowStretch(plan.place.row, 1);
    }
}

// Where nothing grows, the room that is over goes behind the last row or column, not between the controls.
void FillUp(QGridLayout& grid) {
    bool rows = false;
    bool columns = false;
    for (int row = 0; row < grid.rowCount(); ++row) rows = rows || grid.rowStretch(row) > 0;
    for (int column = 0; column < grid.columnCount(); ++column) {
        columns = columns || grid.columnStretch(column) > 0;
    }
    if (!rows) grid.setRowStretch(grid.rowCount(), 1);
    if (!columns) grid.setColumnStretch(grid.columnCount(), 1);
}

// What does not grow itself keeps its size in a row or column that does; a label there may break its lines,
// and a text that is set later does not widen the window.
void Align(const ControlQt& control) {
    constexpr int kLabelCharacters = 30;
    const Place& place = control.plan().place;
    QWidget* widget = control.widget();
    QGridLayout& grid = Grid(*widget->parentWidget());
    const bool wide = AnyColumnGrows(grid, place);
    const bool high = grid.rowStretch(place.row) > 0;
    if (control.plan().kind == ControlKind::Label) {
        auto& label = static_cast<QLabel&>(*widget);
        label.setWordWrap(wide);
        if (wide) label.setMinimumWidth(CharacterSize(label, kLabelCharacters, 0).width());
        if (high) label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    } else if (!GrowthOf(control.plan()).width) {
        Qt::Alignment alignment;
        if (wide) alignment |= Qt::AlignLeft;
        if (high) alignment |= Qt::AlignTop;
        grid.setAlignment(widget, alignment);
    }
}

}  // namespace

void LayOut(QWidget& window, std::span<const MadeControl> all) {
    for (const MadeControl& control : all) {
        if (control->widget() == nullptr) continue;
        const Place& place = control->plan().place;
        Grid(*control->widget()->parentWidget())
            .addWidget(control->widget(), place.row, place.column, 1, place.column_span);
    }
    LetColumnsGrow(all);
    LetRowsGrow(all);
    FillUp(Grid(window));
    for (const MadeControl& control : all) {
        if (control->plan().kind == ControlKind::Frame) FillUp(Grid(*control->widget()));
        if (control->widget() != nullptr) Align(*control);
    }
}

}  // namespace tav
