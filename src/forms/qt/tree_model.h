// The nodes of a tree, as Qt's view asks for them: texts are converted when they are shown. A node is known
// by its number in the vector it came in; the number after the last one is the root above all.
#pragma once

#include <QAbstractItemModel>
#include <QWidget>
#include <unordered_map>
#include <vector>

#include "forms/forms.h"

namespace tav {

class TreeModelQt : public QAbstractItemModel {
 public:
    explicit TreeModelQt(QWidget* view);

    // False when they are the same but for what is dimmed.
    bool SetNodes(std::vector<TreeNode> nodes);
    const std::vector<TreeNode>& nodes() const { return nodes_; }
    QModelIndex IndexOf(std::size_t node) const;
    // Invalid when there is no such node.
    QModelIndex Find(TextView key) const;
    const TreeNode& At(const QModelIndex& index) const { return nodes_[index.internalId()]; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

 private:
    struct Link {
        std::size_t parent;
        int row;
        std::vector<std::size_t> children;
    };
    const Link& LinkOf(const QModelIndex& index) const {
        return links_[index.isValid() ? index.internalId() : nodes_.size()];
    }

    const QWidget& view_;
    std::vector<TreeNode> nodes_;
    std::vector<Link> links_;                           // of the nodes, and after them of the root
    std::unordered_map<TextView, std::size_t> by_key_;  // the keys are those of nodes_
};

}  // namespace tav
