#include "forms/qt/widget_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include "forms/qt/form_layout.h"
#include "forms/qt/qt_text.h"
#include "forms/reader_names.h"

namespace tav {
namespace {

constexpr int kTenths = 10;

// The windows that are shown, and the loops that wait until none is.
class ShownForms {
 public:
    void Enter(const FormWindowQt* window) { windows_.insert(window); }
    void Leave(const FormWindowQt* window) {
        windows_.erase(window);
        if (!windows_.empty()) return;
        for (QEventLoop* loop : loops_) loop->quit();
    }
    void Wait() {
        if (windows_.empty()) return;
        QEventLoop loop;
        loops_.insert(&loop);
        loop.exec();
        loops_.erase(&loop);
    }

 private:
    std::set<const FormWindowQt*> windows_;
    std::set<QEventLoop*> loops_;
};

// Outlives every window, also those that end with the process.
ShownForms& FormsShown() {
    static ShownForms& shown = *new ShownForms;
    return shown;
}

// A label's mnemonic leads to the next control that takes the keyboard.
void JoinLabels(const std::vector<MadeControl>& controls) {
    QWidget* next = nullptr;
    for (auto control = controls.rbegin(); control != controls.rend(); ++control) {
        QWidget* widget = (*control)->widget();
        if (widget == nullptr) continue;
        const ControlPlan& plan = (*control)->plan();
        if (plan.kind == ControlKind::Label && plan.mnemonic != 0)
            static_cast<QLabel*>(widget)->setBuddy(next);
        if ((widget->focusPolicy() & Qt::TabFocus) != 0) next = widget;
    }
}

}  // namespace

FormWindowQt::FormWindowQt(const FormPlan& plan, FormEvents& events)
    : events_(&events), area_(new QScrollArea(this)), contents_(new QWidget(area_)) {
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area_);
    area_->setFrameShape(QFrame::NoFrame);
    area_->setWidgetResizable(true);
    area_->setFocusPolicy(Qt::NoFocus);
    area_->setWidget(contents_);
    contents_->installEventFilter(this);
    setObjectName(ToQt(plan.name));
    setWindowTitle(ToQt(plan.caption));
    setAttribute(Qt::WA_QuitOnClose, false);  // a host's windows decide when the host ends
    MakeControls(plan);
    JoinLabels(controls_);
    const std::vector<TextView> names = NamesForReaders(plan.controls);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!names[i].empty()) controls_[i]->widget()->setAccessibleName(ToQt(names[i]));
    }
    LayOut(*contents_, plan.controls, controls_);
    default_ = FindButton(plan.default_button);
    cancel_ = FindButton(plan.cancel_button);
    refresh_ = FindButton(plan.refresh_button);
    if (!plan.first.empty()) first_ = findChild<QWidget*>(ToQt(plan.first));
    setAcceptDrops(true);
    if (auto* button = dynamic_cast<QPushButton*>(default_); button != nullptr) button->setDefault(true);
    Resize({plan.width * kTenths, plan.height * kTenths});
}

FormWindowQt::~FormWindowQt() {
    // The widgets go before what listens to them.
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

void FormWindowQt::Discard() {
    Hide();
    events_ = nullptr;
    if (handlers_ == 0) deleteLater();
}

// While a handler runs, a widget of this window is below it on the stack, in whatever loop the handler waits.
void FormWindowQt::Tell(const std::function<void(FormEvents&)>& what) {
    if (events_ == nullptr) return;
    ++handlers_;
    what(*events_);
    if (--handlers_ == 0 && events_ == nullptr) deleteLater();
}

void FormWindowQt::MakeControls(const FormPlan& plan) {
    std::unordered_map<TextView, QWidget*> frames = {{TextView(), contents_}};
    for (std::size_t i = 0; i < plan.controls.size(); ++i) {
        const ControlPlan& control = plan.controls[i];
        const Raise raise = [this, i](Event event) {
            Tell([&](FormEvents& events) { events.OnEvent(i, event); });
        };
        controls_.push_back(MakeControl(control, frames.at(control.place.parent), raise));
        if (control.kind == ControlKind::Frame) frames[control.name] = controls_.back()->widget();
    }
}

QAbstractButton* FormWindowQt::FindButton(TextView name) const {
    return name.empty() ? nullptr : findChild<QAbstractButton*>(ToQt(name));
}

void FormWindowQt::Appear() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    if (focusWidget() == nullptr && first_ != nullptr) first_->setFocus();
    if (focusWidget() == nullptr) focusNextChild();
    FormsShown().Enter(this);
}

void FormWindowQt::Show(FormWindow* owner) {
    if (!isVisible()) {
        setWindowModality(Qt::NonModal);
        setWindowFlags(owner == nullptr ? Qt::Window : Qt::Dialog);
        contents_->layout()->activate();  // what has been set since then may need more room
        FitContents();
        SetOwner(owner);
    }
    Appear();
}

void FormWindowQt::SetOwner(FormWindow* owner) {
    winId();  // makes the window handle
    const auto* window = static_cast<FormWindowQt*>(owner);
    windowHandle()->setTransientParent(window == nullptr ? nullptr : window->windowHandle());
    if (window != nullptr) move(window->frameGeometry().center() - rect().center());
}

void FormWindowQt::ShowModal(FormWindow* owner) {
    Hide();  // whether a window is modal is settled when it appears
    setWindowModality(Qt::ApplicationModal);
    setWindowFlags(Qt::Dialog);
    SetOwner(owner);
    QEventLoop loop;
    modal_loop_ = &loop;
    Appear();
    const QPointer<QWidget> alive(this);
    loop.exec();
    // The loop may also have ended with the application's, and the window may be no more.
    if (!alive.isNull() && modal_loop_ == &loop) Hide();
}

void FormWindowQt::Hide() {
    hide();
    if (QEventLoop* loop = std::exchange(modal_loop_, nullptr); loop != nullptr) loop->quit();
    FormsShown().Leave(this);
}

void FormWindowQt::SetCaption(TextView caption) {
    setWindowTitle(ToQt(caption));
}

// The form decides. Whoever asked learns whether the window
// has gone: a host that ends closes all windows first.
void FormWindowQt::closeEvent(QCloseEvent* event) {
    Tell([](FormEvents& events) { events.OnCloseRequest(); });
    event->setAccepted(!isVisible());
}

// Rounded, so that a window that is opened and closed keeps its size.
FormSize FormWindowQt::Size() const {
    const QSizeF tenth = QSizeF(CharacterSize(*this, 1, 1)) / kTenths;
    return {qRound(width() / tenth.width()), qRound(height() / tenth.height())};
}

void FormWindowQt::Resize(const FormSize& size) {
    const QSizeF tenth = QSizeF(CharacterSize(*this, 1, 1)) / kTenths;
    const QSize wish(qRound(size.width * tenth.width()), qRound(size.height * tenth.height()));
    resize(wish.expandedTo(contents_->minimumSizeHint()).boundedTo(LargestInside()));
}

// What the screen has room for, beside the frame; how wide that is shows only when the window has one.
QSize FormWindowQt::LargestInside() const {
    constexpr QSize kUsualFrame(16, 40);
    return screen()->availableSize() - (frameGeometry().size() - size()).expandedTo(kUsualFrame);
}

// Labels that break their lines need the more height the narrower the window is.
void FormWindowQt::FitContents() {
    const QSize least = contents_->layout()->totalMinimumSize();
    const int height = contents_->layout()->totalMinimumHeightForWidth(std::max(width(), least.width()));
    setMinimumSize(QSize(least.width(), height > 0 ? height : least.height()).boundedTo(LargestInside()));
}

void FormWindowQt::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    FitContents();
}

bool FormWindowQt::eventFilter(QObject* watched, QEvent* event) {
    if (watched == contents_ && event->type() == QEvent::LayoutRequest) FitContents();
    return QWidget::eventFilter(watched, event);
}

// Keys that the focused control has not used.
void FormWindowQt::keyPressEvent(QKeyEvent* event) {
    QAbstractButton* button = nullptr;
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) button = default_;
    if (event->key() == Qt::Key_Escape) button = cancel_;
    if (event->key() == Qt::Key_F5) button = refresh_;
    if (button != nullptr) {
        button->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FormWindowQt::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void FormWindowQt::dropEvent(QDropEvent* event) {
    std::vector<Text> paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) paths.push_back(FromQt(url.toLocalFile()));
    }
    event->acceptProposedAction();
    Tell([&](FormEvents& events) { events.OnDrop(paths); });
}

void RunUntilNoFormIsShown() {
    FormsShown().Wait();
}

FormWindowQt* ActiveForm() {
    return dynamic_cast<FormWindowQt*>(QApplication::activeWindow());
}

}  // namespace tav
