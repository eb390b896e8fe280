// Rows by the values of some columns, for searches that no index of the file serves.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "common/value.h"
#include "jet/table/table.h"

namespace tav::jet {

// Built at once from all rows of a table, kept current by its owner. A search may find a few rows too many
// (equal hashes), never too few. Rows with a Null in one of the columns equal nothing and are left out.
class HashIndex {
 public:
    HashIndex(Table& table, std::vector<std::size_t> columns);

    const std::vector<std::size_t>& columns() const { return columns_; }
    // In the order of the row ids. `values` are those of columns().
    std::vector<RowId> Find(std::span<const Value> values) const;

    // A whole row's values, in the order of the table's columns.
    void Add(std::span<const Value> row, RowId id);
    void Remove(std::span<const Value> row, RowId id);

 private:
    std::vector<std::size_t> columns_;
    std::set<std::pair<std::uint64_t, std::uint32_t>> entries_;  // hash and row id
};

}  // namespace tav::jet
