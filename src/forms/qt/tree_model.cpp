#include "forms/qt/tree_model.h"

#include <utility>

#include "forms/form_control.h"
#include "forms/qt/icons.h"
#include "forms/qt/qt_text.h"

namespace tav {

TreeModelQt::TreeModelQt(QWidget* view) : QAbstractItemModel(view), view_(*view), links_(1) {}

bool TreeModelQt::SetNodes(std::vector<TreeNode> nodes) {
    const bool same = SameTree(nodes_, nodes);
    if (!same) beginResetModel();
    nodes_ = std::move(nodes);
    const std::size_t root = nodes_.size();
    links_.assign(root + 1, {root, 0, {}});
    by_key_ = {{TextView(), root}};
    by_key_.reserve(root + 1);
    for (std::size_t i = 0; i < root; ++i) {
        const auto parent = by_key_.find(nodes_[i].parent);
        links_[i].parent = parent != by_key_.end() ? parent->second : root;
        auto& siblings = links_[links_[i].parent].children;
        links_[i].row = static_cast<int>(siblings.size());
        siblings.push_back(i);
        by_key_.emplace(nodes_[i].key, i);
    }
    if (!same) endResetModel();
    return !same;
}

QModelIndex TreeModelQt::IndexOf(std::size_t node) const {
    return node < nodes_.size() ? createIndex(links_[node].row, 0, node) : QModelIndex();
}

QModelIndex TreeModelQt::Find(TextView key) const {
    const auto found = by_key_.find(key);
    return found != by_key_.end() ? IndexOf(found->second) : QModelIndex();
}

QModelIndex TreeModelQt::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return IndexOf(LinkOf(parent).children[static_cast<std::size_t>(row)]);
}

QModelIndex TreeModelQt::parent(const QModelIndex& index) const {
    return IndexOf(LinkOf(index).parent);
}

int TreeModelQt::rowCount(const QModelIndex& parent) const {
    return static_cast<int>(LinkOf(parent).children.size());
}

int TreeModelQt::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant TreeModelQt::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
        case Qt::DisplayRole:
            return ToQt(At(index).text).replace(u'\n', u' ');  // nodes are of one height
        case Qt::ForegroundRole:
            if (!At(index).dimmed) return {};
            return view_.palette().brush(QPalette::Disabled, QPalette::Text);
        case Qt::DecorationRole:
            return PictureIcon(At(index).picture, view_);
        default:
            return {};
    }
}

}  // namespace tav
