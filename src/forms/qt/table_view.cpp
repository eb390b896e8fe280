#include "forms/qt/table_view.h"

#include <QHeaderView>
#include <QTreeView>
#include <algorithm>
#include <utility>

#include "forms/qt/enter.h"
#include "forms/qt/table_model.h"

namespace tav {
namespace {

// A tree of one level: unlike Qt's table it selects whole rows and moves by rows.
class ListBox : public SeenControl<OpenedByEnter<QTreeView>> {
 public:
    ListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise)
        : SeenControl(plan, parent), model_(new TableModelQt(plan.columns, widget_)) {
        widget_->setModel(model_);
        widget_->setRootIsDecorated(false);
        widget_->setItemsExpandable(false);
        widget_->setUniformRowHeights(true);
        widget_->setAllColumnsShowFocus(true);
        widget_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        widget_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        widget_->setMinimumSize(CharacterSize(*widget_, 20, 5));
        QHeaderView& header = *widget_->header();
        header.setSectionsClickable(true);
        header.setSortIndicatorShown(true);
        header.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        for (int i = 0; i < header.count(); ++i) {
            header.resizeSection(i, plan.columns[static_cast<std::size_t>(i)].width * Digit());
        }
        ShowOrder();
        QObject::connect(&header, &QHeaderView::sectionClicked, [this](int column) { SortBy(column); });
        widget_->Open(raise);
    }
    Text GetText() const override {
        const int place = SelectedIndex(*widget_).row();
        return place < 0 ? Text() : model_->table().At(place).text;
    }
    std::vector<ListRow> SetRows(std::vector<ListRow>&& rows) override {
        return model_->SetRows(std::move(rows));
    }
    int SelectedRow() const override { return model_->table().RowAt(SelectedIndex(*widget_).row()); }
    void SelectRow(int row) override {
        const QModelIndex index = model_->index(model_->table().PlaceOf(row), 0);
        if (!index.isValid()) widget_->clearSelection();
        widget_->setCurrentIndex(index);
    }
    void ShowColumn(int column, bool shown) override { widget_->setColumnHidden(column, !shown); }

    std::vector<int> ColumnWidths() const override {
        std::vector<int> widths;
        widths.reserve(static_cast<std::size_t>(widget_->header()->count()));
        for (int i = 0; i < widget_->header()->count(); ++i) {
            widths.push_back(
                i == LastShown() ? 0 : qRound(kTenths * widget_->header()->sectionSize(i) / Digit()));
        }
        return widths;
    }
    void SetColumnWidths(const std::vector<int>& widths) override {
        for (std::size_t i = 0; i < std::min(widths.size(), plan().columns.size()); ++i) {
            if (widths[i] <= 0 || static_cast<int>(i) == LastShown()) continue;
            widget_->header()->resizeSection(static_cast<int>(i), qRound(widths[i] * Digit() / kTenths));
        }
    }

 private:
    static constexpr double kTenths = 10;

    // It has what is left, which is no width of its own: a column shown after it would have no room.
    int LastShown() const {
        int last = widget_->header()->count() - 1;
        while (last >= 0 && widget_->header()->isSectionHidden(last)) --last;
        return last;
    }
    int Digit() const { return widget_->fontMetrics().horizontalAdvance(u'0'); }
    void SortBy(int column) {
        const int selected = SelectedRow();
        model_->SortBy(column);
        ShowOrder();
        SelectRow(selected);
    }
    void ShowOrder() {
        const ListTable& table = model_->table();
        widget_->header()->setSortIndicator(table.sorted_by(),
                                            table.downwards() ? Qt::DescendingOrder : Qt::AscendingOrder);
    }

    TableModelQt* const model_;
};

}  // namespace

MadeControl MakeListBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<ListBox>(plan, parent, raise);
}

}  // namespace tav
