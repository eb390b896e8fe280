#include "forms/qt/list_model.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "forms/qt/qt_text.h"

namespace tav {

void ListModelQt::SetRows(std::vector<ListRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

// Every character is measured once, not every row: thousands of rows are measured in a millisecond or two.
double ListModelQt::Widest(const QFontMetricsF& metrics) const {
    std::vector<float> widths(std::numeric_limits<char16_t>::max() + 1U, -1.0F);
    double widest = 0;
    for (const ListRow& row : rows_) {
        double width = 0;
        for (const char16_t c : row.text) {
            if (widths[c] < 0) widths[c] = static_cast<float>(metrics.horizontalAdvance(QChar(c)));
            width += widths[c];
        }
        widest = std::max(widest, width);
    }
    return widest;
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
