#include "forms/qt/table_model.h"

#include <utility>

#include "forms/qt/icons.h"
#include "forms/qt/qt_text.h"

namespace tav {

std::vector<ListRow> TableModelQt::SetRows(std::vector<ListRow> rows) {
    beginResetModel();
    std::vector<ListRow> before = table_.SetRows(std::move(rows));
    endResetModel();
    return before;
}

void TableModelQt::SortBy(int column) {
    beginResetModel();
    table_.SortBy(column);
    endResetModel();
}

int TableModelQt::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : table_.size();
}

int TableModelQt::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(table_.columns().size());
}

QVariant TableModelQt::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const ListRow& row = table_.At(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return ToQt(table_.Cell(index.row(), index.column()));
        case Qt::DecorationRole:
            return index.column() == 0 ? QVariant(PictureIcon(row.picture, view_)) : QVariant();
        case Qt::ToolTipRole:
            return PlainToolTip(row.tool_tip);
        case kRowText:
            return ToQt(row.text);
        default:
            return {};
    }
}

QVariant TableModelQt::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return ToQt(table_.columns()[static_cast<std::size_t>(section)].title);
}

}  // namespace tav
