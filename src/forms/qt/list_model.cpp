#include "forms/qt/list_model.h"

#include <utility>

#include "forms/qt/qt_text.h"

namespace tav {

void ListModelQt::SetRows(std::vector<ListRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int ListModelQt::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ListModelQt::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const ListRow& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return ToQt(row.text).replace(u'\n', u' ');  // rows are of one height
        case Qt::ToolTipRole:
            return PlainToolTip(row.tool_tip);
        default:
            return {};
    }
}

}  // namespace tav
