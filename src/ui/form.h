// A form: a window described by its plan, with its handlers under their names.
//
// A form derives from Form, names its controls as members and binds its handlers in one
// table. Every handler is guarded: what fails in it is shown, and the window lives on.
// Handlers run one inside another when an event loop runs in one of them (an import, a
// modal dialog, a message); a form unloaded meanwhile is hidden at once and destroyed
// when the outermost of its handlers has returned, so a handler can rely on its controls.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <utility>
#include <vector>

#include "common/on_left.h"
#include "forms/forms.h"

namespace tav {

class Form : public FormEvents {
 public:
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    // Whether there is a window that the user has not closed.
    bool Loaded() const { return window_ != nullptr && !unloaded_ && window_->Exists(); }
    // Whether it was shown since it was loaded.
    bool Shown() const { return Loaded() && shown_; }
    // Creates the window and runs Form_Load; a window that exists gets
    // Form_Again. Without a toolkit: a Failure, and nothing has changed.
    void Load();
    // Loads it, and shows it modeless, in front of its owner, if it has one.
    void Show(Form* owner = nullptr);
    // Loads it, and returns when the user is done with it.
    void ShowModal(Form& owner);
    // Runs Form_Unload and takes the window away.
    void Unload();
    // The form whose handler runs, the innermost one; null when none does.
    static Form* Handling();
    // With the shell; what that asks or says belongs to this window.
    void OpenDocument(TextView path);

 protected:
    template <class F>
    struct Handler {
        TextView control;
        Event event;
        void (F::*procedure)();
        TextView title = {};  // of its failures; empty: "Ошибка в функции control_event"
    };

    // `load_title` is the title of what fails in Form_Load.
    explicit Form(const FormPlan& plan, TextView load_title = u"Ошибка в функции Form_Load");

    template <class F>
    void Bind(F& form, std::initializer_list<Handler<F>> handlers) {
        for (const Handler<F>& handler : handlers) {
            Bind(handler.control, handler.event, handler.title,
                 [&form, procedure = handler.procedure] { (form.*procedure)(); });
        }
    }

    // The system's dialog, owned by this window; empty text when the user cancelled.
    Text BrowseFolder(TextView title, TextView start);

    virtual void Form_Load() {}
    virtual void Form_Again() {}
    // Whether the window may be closed that the user wants to close.
    virtual bool Form_QueryUnload() { return true; }
    virtual void Form_Unload() {}
    virtual void Form_Drop(const std::vector<Text>&) {}

    // As the user's close button does.
    void Close();
    // Runs what is no handler as if it were one: a window that is closed meanwhile goes afterwards.
    void RunAsHandler(const std::function<void()>& act);
    void SetCaption(TextView caption) { window().SetCaption(caption); }
    // What a person has made of the window's size and of its lists' columns, as a text that can be kept:
    // "1800x540;lstFile:240,120,220". A text that is damaged changes nothing, or only what it still says.
    Text Layout() const;
    void SetLayout(TextView layout);

 private:
    friend class Control;
    class Running;

    void Bind(TextView control, Event event, TextView title, std::function<void()> run);
    std::size_t IndexOf(TextView control) const;
    FormWindow& window() const;
    void OnEvent(std::size_t control, Event event) override;
    void OnCloseRequest() override { Close(); }
    void OnDrop(const std::vector<Text>& paths) override;

    struct Procedure {
        Text title;
        std::function<void()> run;
    };
    const FormPlan& plan_;
    TextView load_title_;
    std::map<std::pair<std::size_t, Event>, Procedure> procedures_;
    OwnedWindow window_;
    int running_ = 0;        // handlers of this form that have not returned
    bool unloaded_ = false;  // the window goes when they have
    bool shown_ = false;
};

// While it lives, the flag is set: a handler that runs events shows by it that it runs.
class Busy {
 public:
    explicit Busy(bool& flag) : flag_(flag) { flag_ = true; }
    ~Busy() { flag_ = false; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

 private:
    bool& flag_;
    const OnLeft left_{[this] { flag_ = false; }};
};

// The one shared instance of a form. Never destroyed: a process may end with windows open, and the toolkit's
// own things are gone by then.
template <class F>
F& Shared() {
    static F& form = *new F;
    return form;
}

// The controls as handlers see them. A control of a form that
// is not loaded is "Invalid procedure call or argument".
class Control {
 public:
    Control(Form& form, TextView name) : form_(form), index_(form.IndexOf(name)) {}

    bool Enabled() const { return window().Enabled(index_); }
    void Enable(bool enabled) { window().Enable(index_, enabled); }

 protected:
    FormWindow& window() const { return form_.window(); }
    std::size_t index() const { return index_; }

 private:
    Form& form_;
    std::size_t index_;
};

using Button = Control;

// A label, a text box or a memo.
class TextControl : public Control {
 public:
    using Control::Control;
    Text Get() const { return window().GetText(index()); }
    void Set(TextView text) { window().SetText(index(), text); }
};

class CheckBox : public Control {
 public:
    using Control::Control;
    bool Checked() const { return window().Checked(index()); }
    void Check(bool checked) { window().Check(index(), checked); }
};

// A list box or a combo box. Rows count from 0; -1 is none.
class ListBox : public Control {
 public:
    using Control::Control;
    std::vector<ListRow> SetRows(std::vector<ListRow> rows) {
        return window().SetRows(index(), std::move(rows));
    }
    int Selected() const { return window().SelectedRow(index()); }
    void Select(int row) { window().SelectRow(index(), row); }
    void ShowColumn(int column, bool shown) { window().ShowColumn(index(), column, shown); }
    // The selected row's text, empty when none is; of a list box.
    Text SelectedText() const { return window().GetText(index()); }
};

class TreeView : public Control {
 public:
    using Control::Control;
    void SetNodes(std::vector<TreeNode> nodes) { window().SetNodes(index(), std::move(nodes)); }
    Text SelectedKey() const { return window().SelectedNode(index()); }
    void Select(TextView key) { window().SelectNode(index(), key); }
};

class ProgressBar : public Control {
 public:
    using Control::Control;
    void Set(double part) { window().SetBar(index(), part); }
};

class Timer : public Control {
 public:
    using Control::Control;
    void SetInterval(int milliseconds) { window().SetInterval(index(), milliseconds); }
};

}  // namespace tav
