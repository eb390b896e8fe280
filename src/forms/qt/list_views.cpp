#include "forms/qt/list_views.h"

#include <QComboBox>
#include <QListView>
#include <QStyledItemDelegate>
#include <cmath>
#include <utility>

#include "forms/qt/enter.h"
#include "forms/qt/list_model.h"

namespace tav {
namespace {

// All rows are taken to be as large as the first, which makes thousands of them quick; so the first is said
// to be as wide as the widest.
class RowDelegate : public QStyledItemDelegate {
 public:
    RowDelegate(const ListModelQt& model, QObject* parent) : QStyledItemDelegate(parent), model_(model) {}
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        const double margins = 2.0 * option.fontMetrics.averageCharWidth();
        const int width = static_cast<int>(std::ceil(model_.Widest(QFontMetricsF(option.font)) + margins));
        return size.expandedTo({width, option.fontMetrics.height()});
    }

 private:
    const ListModelQt& model_;
};

class ListBox : public SeenControl<OpenedByEnter<QListView>> {
 public:
    ListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) : SeenControl(plan, parent) {
        widget_->setModel(model_);
        widget_->setItemDelegate(new RowDelegate(*model_, widget_));
        widget_->setUniformItemSizes(true);
        widget_->setTextElideMode(Qt::ElideNone);
        widget_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        widget_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        widget_->setMinimumSize(CharacterSize(*widget_, 20, 4));
        widget_->Open(raise);
    }
    void SetRows(std::vector<ListRow>&& rows) override { model_->SetRows(std::move(rows)); }
    int SelectedRow() const override { return SelectedIndex(*widget_).row(); }
    void SelectRow(int row) override {
        const QModelIndex index = model_->index(row);
        if (!index.isValid()) widget_->clearSelection();
        widget_->setCurrentIndex(index);
    }

 private:
    ListModelQt* const model_ = new ListModelQt(widget_);
};

class ComboBox : public SeenControl<QComboBox> {
 public:
    ComboBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) : SeenControl(plan, parent) {
        widget_->setModel(model_);
        // Its width is the form's affair: not every row is measured for it.
        widget_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        widget_->setMinimumContentsLength(kCharacters);
        QObject::connect(widget_, &QComboBox::activated, [this, raise](int row) {
            if (std::exchange(selected_, row) != row) raise(Event::Click);
        });
    }
    void SetRows(std::vector<ListRow>&& rows) override {
        model_->SetRows(std::move(rows));
        SelectRow(-1);
    }
    int SelectedRow() const override { return widget_->currentIndex(); }
    void SelectRow(int row) override {
        widget_->setCurrentIndex(row);
        selected_ = widget_->currentIndex();
    }

 private:
    static constexpr int kCharacters = 10;

    ListModelQt* const model_ = new ListModelQt(widget_);
    int selected_ = -1;  // as the form knows it
};

}  // namespace

MadeControl MakeListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<ListBox>(plan, parent, raise);
}
MadeControl MakeComboBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<ComboBox>(plan, parent, raise);
}

}  // namespace tav
