// The rows of a list as Qt's view asks for them: texts are converted when they are shown.
#pragma once

#include <QAbstractTableModel>
#include <QWidget>

#include "forms/list_table.h"

namespace tav {

// What a row is when it is copied; not seen.
inline constexpr int kRowText = Qt::UserRole;

class TableModelQt : public QAbstractTableModel {
 public:
    TableModelQt(std::span<const ListColumn> columns, QWidget* view)
        : QAbstractTableModel(view), view_(*view), table_(columns) {}

    const ListTable& table() const { return table_; }
    std::vector<ListRow> SetRows(std::vector<ListRow> rows);
    void SortBy(int column);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
    const QWidget& view_;
    ListTable table_;
};

}  // namespace tav
