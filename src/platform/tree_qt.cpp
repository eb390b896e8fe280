// The tree.
#include <QHeaderView>
#include <QTreeWidget>
#include <unordered_map>
#include <utility>

#include "platform/enter_qt.h"
#include "platform/pictures_qt.h"
#include "platform/text_qt.h"

namespace tav {
namespace {

constexpr int kKeyRole = Qt::UserRole;

class TreeView : public SeenControl<OpenedByEnter<QTreeWidget>> {
 public:
    TreeView(const ControlPlan& plan, QWidget* parent, Raise raise) : SeenControl(plan, parent) {
        widget_->setHeaderHidden(true);
        // As wide as its nodes, so that a scroll bar shows the ends of long ones.
        widget_->header()->setStretchLastSection(false);
        widget_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        widget_->setUniformRowHeights(true);
        widget_->setTextElideMode(Qt::ElideNone);
        widget_->setMinimumSize(CharacterSize(*widget_, 20, 4));
        widget_->Open(std::move(raise));
    }

    // The nodes are joined before the view sees them; then it takes them all in one step.
    void SetNodes(std::vector<TreeNode> nodes) override {
        widget_->clear();
        items_.clear();
        QList<QTreeWidgetItem*> top;
        std::vector<QTreeWidgetItem*> expanded;
        for (const TreeNode& node : nodes) {
            const auto parent = items_.find(node.parent);
            auto* item = new QTreeWidgetItem;
            item->setText(0, ToQt(node.text));
            item->setData(0, kKeyRole, ToQt(node.key));
            if (node.picture != Picture::None) item->setIcon(0, PictureIcon(node.picture, *widget_));
            if (parent == items_.end()) {
                top << item;
            } else {
                parent->second->addChild(item);
            }
            if (node.expanded) expanded.push_back(item);
            items_[node.key] = item;
        }
        widget_->addTopLevelItems(top);
        for (QTreeWidgetItem* item : expanded) item->setExpanded(true);
    }
    Text SelectedNode() const override { return FromQt(SelectedIndex(*widget_).data(kKeyRole).toString()); }
    void SelectNode(TextView key) override {
        const auto item = items_.find(Text(key));
        if (item == items_.end()) widget_->clearSelection();
        widget_->setCurrentItem(item != items_.end() ? item->second : nullptr);
    }

 private:
    std::unordered_map<Text, QTreeWidgetItem*> items_;  // by key
};

}  // namespace

MadeControl MakeTreeView(const ControlPlan& plan, QWidget* parent, Raise raise) {
    return std::make_unique<TreeView>(plan, parent, std::move(raise));
}

}  // namespace tav
