#include "forms/qt/tree_view.h"

#include <QHeaderView>
#include <QTreeView>
#include <utility>

#include "forms/qt/enter.h"
#include "forms/qt/tree_model.h"

namespace tav {
namespace {

class TreeView : public SeenControl<OpenedByEnter<QTreeView>> {
 public:
    TreeView(const ControlPlan& plan, QWidget* parent, const Raise& raise) : SeenControl(plan, parent) {
        widget_->setModel(model_);
        widget_->setHeaderHidden(true);
        // As wide as its nodes, so that a scroll bar shows the ends of long ones.
        widget_->header()->setStretchLastSection(false);
        widget_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        widget_->setUniformRowHeights(true);
        widget_->setTextElideMode(Qt::ElideNone);
        widget_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        widget_->setMinimumSize(CharacterSize(*widget_, 20, 4));
        widget_->Open(raise);
    }
    void SetNodes(std::vector<TreeNode>&& nodes) override {
        if (!model_->SetNodes(std::move(nodes))) return widget_->viewport()->update();
        for (std::size_t i = 0; i < model_->nodes().size(); ++i) {
            if (model_->nodes()[i].expanded) widget_->expand(model_->IndexOf(i));
        }
    }
    Text SelectedNode() const override {
        const QModelIndex selected = SelectedIndex(*widget_);
        return selected.isValid() ? model_->At(selected).key : Text();
    }
    void SelectNode(TextView key) override {
        const QModelIndex index = model_->Find(key);
        if (!index.isValid()) widget_->clearSelection();
        widget_->setCurrentIndex(index);
    }

 private:
    TreeModelQt* const model_ = new TreeModelQt(widget_);
};

}  // namespace

MadeControl MakeTreeView(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<TreeView>(plan, parent, raise);
}

}  // namespace tav
