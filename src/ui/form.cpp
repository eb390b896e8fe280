#include "ui/form.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "common/concat.h"
#include "common/guard.h"
#include "forms/shell.h"

namespace tav {
namespace {

TextView EventName(Event event) {
    static constexpr TextView kNames[] = {u"Click", u"DblClick", u"Change", u"Timer"};
    return kNames[static_cast<std::size_t>(event)];
}

}  // namespace

// While one of the form's handlers runs, its window stays. What is said `within` another handler, by a timer while that
// one's box is open, too, is not said twice.
class Form::Running {
 public:
    explicit Running(Form& form, bool within = false)
        : form_(form), outer_(std::exchange(Innermost(), &form)) {
        ++form_.running_;
        if (!within || outer_ == nullptr) one_box_.emplace();
    }
    static Form*& Innermost() {
        static Form* innermost = nullptr;
        return innermost;
    }
    ~Running() { End(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

 private:
    void End() {
        one_box_.reset();
        Innermost() = outer_;
        if (--form_.running_ > 0 || !form_.unloaded_) return;
        form_.unloaded_ = false;
        form_.window_.reset();
    }

    Form& form_;
    Form* const outer_;
    std::optional<OneBoxPerCause> one_box_;
    const OnLeft left_{[this] { End(); }};
};

Form* Form::Handling() {
    return Running::Innermost();
}

Form::Form(const FormPlan& plan, TextView load_title) : plan_(plan), load_title_(load_title) {}

void Form::Load() {
    const bool again = Loaded();
    if (!again) shown_ = false;
    if (window_ == nullptr || !window_->Exists()) window_ = CurrentToolkit().Create(plan_, *this);
    unloaded_ = false;
    const Running running(*this);
    Guarded(load_title_, [&] { again ? Form_Again() : Form_Load(); });
}

void Form::Show(Form* owner) {
    Load();
    const bool owned = owner != nullptr && owner != this && owner->Loaded();
    shown_ = Loaded();
    if (shown_) window_->Show(owned ? owner->window_.get() : nullptr);
}

void Form::ShowModal(Form& owner) {
    Load();
    const Running running(*this);
    shown_ = Loaded();
    if (shown_) window_->ShowModal(owner.window_.get());
}

void Form::Unload() {
    if (!Loaded()) return;
    const Running running(*this);
    Guarded(u"Ошибка в функции Form_Unload", [&] { Form_Unload(); });
    unloaded_ = true;
    window_->Hide();
}

void Form::Bind(TextView control, Event event, TextView title, std::function<void()> run) {
    Text shown(title);
    if (shown.empty()) {
        shown = Concat(u"Ошибка в функции ", control, u"_", EventName(event));
    }
    procedures_[{IndexOf(control), event}] = {std::move(shown), std::move(run)};
}

std::size_t Form::IndexOf(TextView control) const {
    const auto found = std::find_if(plan_.controls.begin(), plan_.controls.end(),
                                    [&](const ControlPlan& planned) { return planned.name == control; });
    if (found == plan_.controls.end()) throw Failure(RunTimeError::InvalidProcedureCall, control);
    return static_cast<std::size_t>(std::distance(plan_.controls.begin(), found));
}

FormWindow& Form::window() const {
    if (window_ == nullptr) throw Failure(RunTimeError::InvalidProcedureCall, plan_.name);
    return *window_;
}

Text Form::BrowseFolder(TextView title, TextView start) {
    return CurrentToolkit().BrowseFolder(title, start, &window());
}

void Form::OpenDocument(TextView path) {
    tav::OpenDocument(path, &window());
}

void Form::OnEvent(std::size_t control, Event event) {
    const auto found = procedures_.find({control, event});
    if (found == procedures_.end() || !Loaded()) return;
    const Running running(*this, event == Event::Timer);
    Guarded(found->second.title, found->second.run);
}

void Form::RunAsHandler(const std::function<void()>& act) {
    const Running running(*this, true);
    act();
}

void Form::Close() {
    const Running running(*this);
    bool may = true;
    Guarded(u"Ошибка в функции Form_QueryUnload", [&] { may = Form_QueryUnload(); });
    if (may) Unload();
}

void Form::OnDrop(const std::vector<Text>& paths) {
    if (!Loaded()) return;
    const Running running(*this);
    Guarded(u"Ошибка в функции Form_Drop", [&] { Form_Drop(paths); });
}

}  // namespace tav
