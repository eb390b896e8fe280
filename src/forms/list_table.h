// The rows of a table in the order in which they are seen: as they came, or sorted by a column.
#pragma once

#include <span>
#include <vector>

#include "forms/forms.h"

namespace tav {

class ListTable {
 public:
    // The columns outlive the table.
    explicit ListTable(std::span<const ListColumn> columns) : columns_(columns) {}

    std::span<const ListColumn> columns() const { return columns_; }
    // They are sorted as those before them were, which are given back.
    std::vector<ListRow> SetRows(std::vector<ListRow> rows);
    // A click on a column's title: upwards; the same again: downwards; once more: as they came.
    void SortBy(int column);
    // The column, -1 for none.
    int sorted_by() const { return column_; }
    bool downwards() const { return downwards_; }

    int size() const { return static_cast<int>(rows_.size()); }
    // Places count from 0 at the top, rows as they came; -1 stands for none on both sides.
    int RowAt(int place) const;
    int PlaceOf(int row) const;
    // The row at a place that exists.
    const ListRow& At(int place) const { return rows_[static_cast<std::size_t>(RowAt(place))]; }
    // On one line; empty where the row has no such cell.
    Text Cell(int place, int column) const;

 private:
    void Sort();
    Text KeyOf(const ListRow& row) const;

    std::span<const ListColumn> columns_;
    std::vector<ListRow> rows_;
    std::vector<int> order_;  // the rows by their places
    int column_ = -1;
    bool downwards_ = false;
};

}  // namespace tav
