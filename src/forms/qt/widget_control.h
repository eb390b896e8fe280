// One control of a form in Qt: a widget and what can be asked of its kind.
//
// Widgets belong to their parent widget, controls to the form's
// window (widget_window.h), which deletes the widgets first.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "forms/form_control.h"

namespace tav {

// Tells the form that something has happened to the control.
using Raise = std::function<void(Event)>;

class ControlQt : public FormControl {
 public:
    using FormControl::FormControl;

    // Null for what is not seen.
    virtual QWidget* widget() const { return nullptr; }
    bool Enabled() const override;
    void Enable(bool enabled) override;
};

// A control that is seen as a widget of type `Widget`.
template <class Widget>
class SeenControl : public ControlQt {
 public:
    SeenControl(const ControlPlan& plan, QWidget* parent) : ControlQt(plan), widget_(new Widget(parent)) {}
    QWidget* widget() const final { return widget_; }

 protected:
    Widget* const widget_;
};

using MadeControl = std::unique_ptr<ControlQt>;

// By the plan's kind; the widget gets the plan's name, caption, tool-tip and mnemonic.
MadeControl MakeControl(const ControlPlan& plan, QWidget* parent, const Raise& raise);

// A size in average characters and lines of the widget's font, whatever the screen's resolution.
QSize CharacterSize(const QWidget& widget, int characters, int lines);

}  // namespace tav
