// Rows by the values of some columns, for searches that no index of the file serves.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "common/value.h"
#include "jet/table/table.h"

namespace tav::jet {

// Built at once from all rows of a table, kept current by its owner; 8 bytes a row. A search may find a few rows
// too many (equal hashes), never too few. Rows with a Null in one of the columns equal nothing and are left out.
class HashIndex {
 public:
    // No value for a table with more rows than memory should hold this of.
    static std::optional<HashIndex> Of(Table& table, std::vector<std::size_t> columns);

    const std::vector<std::size_t>& columns() const { return columns_; }
    // In the order of the row ids. `values` are those of columns().
    std::vector<RowId> Find(std::span<const Value> values) const;

    // A whole row's values, in the order of the table's columns.
    void Add(std::span<const Value> row, RowId id);
    void Remove(std::span<const Value> row, RowId id);

 private:
    // A row: the hash of its values, and below it the word of its id.
    using Entry = std::uint64_t;

    explicit HashIndex(std::vector<std::size_t> columns) : columns_(std::move(columns)) {}
    std::optional<Entry> EntryOf(std::span<const Value> row, RowId id) const;
    // Takes the changes into the entries once there are many.
    void MergeMany();

    std::vector<std::size_t> columns_;
    std::vector<Entry> entries_;  // sorted; but for these changes:
    std::set<Entry> added_;
    std::set<Entry> removed_;
};

}  // namespace tav::jet
