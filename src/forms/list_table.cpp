#include "forms/list_table.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tav {
namespace {

// "31.12.2011 - ..." as "20111231...": the digits from the year down.
Text DatesFirst(TextView text) {
    constexpr std::size_t kDate = 10;  // dd.mm.yyyy
    Text key;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const TextView date = text.substr(at, kDate);
        const bool is_date = date.size() == kDate && date[2] == u'.' && date[5] == u'.';
        if (!is_date) continue;
        key.append(date.substr(6)).append(date.substr(3, 2)).append(date.substr(0, 2));
        at += kDate - 1;
    }
    return key;
}

}  // namespace

std::vector<ListRow> ListTable::SetRows(std::vector<ListRow> rows) {
    std::swap(rows_, rows);
    Sort();
    return rows;
}

void ListTable::SortBy(int column) {
    const bool same = column == column_;
    if (same && downwards_) {
        column_ = -1;
        downwards_ = false;
    } else {
        downwards_ = same;
        column_ = column;
    }
    Sort();
}

Text ListTable::KeyOf(const ListRow& row) const {
    const auto column = static_cast<std::size_t>(column_);
    if (column >= row.cells.size()) return {};
    const Text& cell = row.cells[column];
    return columns_[column].order == ColumnOrder::Dates ? DatesFirst(cell) : UpperCase(cell);
}

void ListTable::Sort() {
    order_.resize(rows_.size());
    std::iota(order_.begin(), order_.end(), 0);
    if (column_ < 0) return;
    std::vector<Text> keys;
    keys.reserve(rows_.size());
    for (const ListRow& row : rows_) keys.push_back(KeyOf(row));
    const auto key = [&](int row) -> const Text& { return keys[static_cast<std::size_t>(row)]; };
    std::ranges::stable_sort(order_,
                             [&](int a, int b) { return downwards_ ? key(b) < key(a) : key(a) < key(b); });
}

int ListTable::RowAt(int place) const {
    return place >= 0 && place < size() ? order_[static_cast<std::size_t>(place)] : -1;
}

int ListTable::PlaceOf(int row) const {
    const auto found = std::ranges::find(order_, row);
    return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

Text ListTable::Cell(int place, int column) const {
    const std::vector<Text>& cells = At(place).cells;
    if (static_cast<std::size_t>(column) >= cells.size()) return {};
    Text cell = cells[static_cast<std::size_t>(column)];
    std::ranges::replace(cell, u'\n', u' ');
    return cell;
}

}  // namespace tav
