#include "forms/qt/widget_control.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <algorithm>
#include <array>
#include <utility>

#include "forms/qt/combo_view.h"
#include "forms/qt/icons.h"
#include "forms/qt/qt_text.h"
#include "forms/qt/table_view.h"
#include "forms/qt/tree_view.h"
#include "forms/reader_names.h"

namespace tav {
namespace {

// A control whose text is its caption. It is kept as it was set, for the widget has it with mnemonics.
template <class Widget>
class Captioned : public SeenControl<Widget> {
 public:
    using SeenControl<Widget>::SeenControl;
    Text GetText() const override { return caption_; }
    void SetText(TextView text) override {
        caption_ = text;
        ShowCaption(WithMnemonic(text, this->plan().mnemonic));
    }

 protected:
    virtual void ShowCaption(const QString& caption) = 0;

 private:
    Text caption_;
};

class Frame : public Captioned<QGroupBox> {
 public:
    using Captioned::Captioned;

 protected:
    void ShowCaption(const QString& caption) override { widget_->setTitle(caption); }
};

// A frame without a title is not seen: it only holds its controls together.
class Group : public SeenControl<QWidget> {
 public:
    Group(const ControlPlan& plan, QWidget* parent) : SeenControl(plan, parent) {
        (new QGridLayout(widget_))->setContentsMargins(0, 0, 0, 0);
    }
};

MadeControl MakeFrame(const ControlPlan& plan, QWidget* parent, const Raise&) {
    if (plan.caption.empty()) return std::make_unique<Group>(plan, parent);
    return std::make_unique<Frame>(plan, parent);
}

class Label : public Captioned<QLabel> {
 public:
    Label(const ControlPlan& plan, QWidget* parent, const Raise&) : Captioned(plan, parent) {
        widget_->setTextFormat(Qt::PlainText);
    }

 protected:
    // Without a buddy QLabel knows no mnemonics, and shows every "&".
    void ShowCaption(const QString& caption) override {
        widget_->setText(plan().mnemonic != 0 ? caption : ToQt(GetText()));
    }
};

// Enter presses the button that has the focus, as it does in dialogs.
class PressedByEnter : public QPushButton {
 public:
    explicit PressedByEnter(QWidget* parent) : QPushButton(parent) { setAutoDefault(true); }
};

// A letter that the caption lacks presses the control all the
// same. A caption's own letter is taken again with each caption.
template <class Widget>
class Pressed : public Captioned<Widget> {
 public:
    Pressed(const ControlPlan& plan, QWidget* parent, const Raise& raise) : Captioned<Widget>(plan, parent) {
        QObject::connect(this->widget_, &QAbstractButton::clicked, [raise] { raise(Event::Click); });
    }

 protected:
    void ShowCaption(const QString& caption) override {
        this->widget_->setText(caption);
        if (const char16_t mnemonic = this->plan().mnemonic; mnemonic != 0) {
            this->widget_->setShortcut(QKeySequence(QStringLiteral("Alt+") + QChar(mnemonic).toUpper()));
        }
    }
};

// One whose caption has no words is narrow.
class Button : public Pressed<PressedByEnter> {
 public:
    Button(const ControlPlan& plan, QWidget* parent, const Raise& raise) : Pressed(plan, parent, raise) {
        constexpr int kNarrowCharacters = 6;
        if (HasWords(plan.caption)) return;
        widget_->setFixedWidth(CharacterSize(*widget_, kNarrowCharacters, 0).width());
    }
};

class PictureButton : public Pressed<PressedByEnter> {
 public:
    PictureButton(const ControlPlan& plan, QWidget* parent, const Raise& raise)
        : Pressed(plan, parent, raise) {
        widget_->setIcon(PictureIcon(plan.picture, *widget_));
        widget_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

 protected:
    void ShowCaption(const QString&) override { Pressed::ShowCaption({}); }
};

class CheckBox : public Pressed<QCheckBox> {
 public:
    using Pressed::Pressed;
    bool Checked() const override { return widget_->isChecked(); }
    void Check(bool checked) override { widget_->setChecked(checked); }
};

class TextBox : public SeenControl<QLineEdit> {
 public:
    TextBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) : SeenControl(plan, parent) {
        widget_->setAcceptDrops(false);  // what is dropped is the window's
        // Typing over a text with the same text is a change to QLineEdit, but not to the form.
        QObject::connect(widget_, &QLineEdit::textChanged, [this, raise](const QString& text) {
            if (std::exchange(last_, text) != text) raise(Event::Change);
        });
    }
    Text GetText() const override { return FromQt(widget_->text()); }
    void SetText(TextView text) override { widget_->setText(ToQt(text)); }

 private:
    QString last_;
};

// A click that selects nothing is told of.
class ClickedText : public QPlainTextEdit {
 public:
    using QPlainTextEdit::QPlainTextEdit;
    Raise raise;

 protected:
    void mouseReleaseEvent(QMouseEvent* event) override {
        QPlainTextEdit::mouseReleaseEvent(event);
        if (event->button() == Qt::LeftButton && !textCursor().hasSelection()) raise(Event::Click);
    }
};

class Memo : public Captioned<ClickedText> {
 public:
    Memo(const ControlPlan& plan, QWidget* parent, const Raise& raise) : Captioned(plan, parent) {
        widget_->raise = raise;
        widget_->setReadOnly(true);
        widget_->setTabChangesFocus(true);
        // No line is shown in part.
        constexpr int kLines = 4;
        const QMargins around = widget_->contentsMargins();
        const int margins =
            around.top() + around.bottom() + 2 * qRound(widget_->document()->documentMargin());
        widget_->setFixedHeight(kLines * widget_->fontMetrics().lineSpacing() + margins);
    }

 protected:
    void ShowCaption(const QString&) override { widget_->setPlainText(ToQt(GetText())); }
};

class ProgressBar : public SeenControl<QProgressBar> {
 public:
    ProgressBar(const ControlPlan& plan, QWidget* parent, const Raise&) : SeenControl(plan, parent) {
        widget_->setRange(0, kSteps);
        widget_->setValue(0);
    }
    void SetBar(double part) override {
        widget_->setValue(static_cast<int>(kSteps * (part > 0 ? std::min(part, 1.0) : 0.0)));
    }

 private:
    static constexpr int kSteps = 1000;
};

class PictureBox : public SeenControl<QLabel> {
 public:
    PictureBox(const ControlPlan& plan, QWidget* parent, const Raise&) : SeenControl(plan, parent) {
        const int size = widget_->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, widget_);
        widget_->setPixmap(
            PictureIcon(plan.picture, *widget_).pixmap(QSize(size, size), widget_->devicePixelRatio()));
    }
};

class Timer : public ControlQt {
 public:
    Timer(const ControlPlan& plan, QWidget*, const Raise& raise) : ControlQt(plan) {
        timer_.callOnTimeout([raise] { raise(Event::Timer); });
    }
    void SetInterval(int milliseconds) override {
        if (milliseconds > 0) {
            timer_.start(milliseconds);
        } else {
            timer_.stop();
        }
    }

 private:
    QTimer timer_;
};

template <class Control>
MadeControl Make(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<Control>(plan, parent, raise);
}

constexpr std::array<std::pair<ControlKind, MadeControl (*)(const ControlPlan&, QWidget*, const Raise&)>, 13>
    kMakers = {{
        {ControlKind::Frame, MakeFrame},
        {ControlKind::Label, Make<Label>},
        {ControlKind::TextBox, Make<TextBox>},
        {ControlKind::Memo, Make<Memo>},
        {ControlKind::Button, Make<Button>},
        {ControlKind::PictureButton, Make<PictureButton>},
        {ControlKind::CheckBox, Make<CheckBox>},
        {ControlKind::ListBox, MakeListBox},
        {ControlKind::ComboBox, MakeComboBox},
        {ControlKind::TreeView, MakeTreeView},
        {ControlKind::ProgressBar, Make<ProgressBar>},
        {ControlKind::Picture, Make<PictureBox>},
        {ControlKind::Timer, Make<Timer>},
    }};

}  // namespace

bool ControlQt::Enabled() const {
    if (widget() == nullptr) Refuse();
    return widget()->isEnabledTo(widget()->parentWidget());
}

void ControlQt::Enable(bool enabled) {
    if (widget() == nullptr) Refuse();
    widget()->setEnabled(enabled);
}

MadeControl MakeControl(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    const auto* maker =
        std::find_if(kMakers.begin(), kMakers.end(), [&](const auto& m) { return m.first == plan.kind; });
    MadeControl control = maker->second(plan, parent, raise);
    if (QWidget* widget = control->widget(); widget != nullptr) {
        widget->setObjectName(ToQt(plan.name));
        widget->setToolTip(PlainToolTip(plan.tool_tip));
        if (!plan.caption.empty() || plan.mnemonic != 0) control->SetText(plan.caption);
    }
    return control;
}

QSize CharacterSize(const QWidget& widget, int characters, int lines) {
    const QFontMetrics metrics(widget.font());
    return {characters * metrics.averageCharWidth(), lines * metrics.lineSpacing()};
}

}  // namespace tav
