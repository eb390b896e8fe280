#include "sql/hash_index.h"

#include <algorithm>
#include <optional>

#include "sql/sql_value.h"

namespace tav::jet {
namespace {

// The hash of several values, given one by one; nothing when one is Null.
template <class ValueAt>
std::optional<std::uint64_t> HashOf(std::size_t count, ValueAt value_at) {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Value& value = value_at(i);
        if (IsNull(value)) return std::nullopt;
        hash = (hash ^ HashValue(value)) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 29;
    }
    return hash;
}

std::optional<std::uint64_t> HashOfRow(const std::vector<std::size_t>& columns, std::span<const Value> row) {
    return HashOf(columns.size(), [&](std::size_t i) -> const Value& { return row[columns[i]]; });
}

}  // namespace

HashIndex::HashIndex(Table& table, std::vector<std::size_t> columns) : columns_(std::move(columns)) {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> found;
    Value value;
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const Table::Row row = scan.row();
        const auto hash = HashOf(columns_.size(),
                                 [&](std::size_t i) -> const Value& { return value = row.Get(columns_[i]); });
        if (hash) found.emplace_back(*hash, row.id().Word());
        table.Trim();
    }
    std::sort(found.begin(), found.end());
    entries_.insert(found.begin(), found.end());
}

std::vector<RowId> HashIndex::Find(std::span<const Value> values) const {
    std::vector<RowId> rows;
    const auto hash = HashOf(values.size(), [&](std::size_t i) -> const Value& { return values[i]; });
    if (!hash) return rows;
    for (auto at = entries_.lower_bound({*hash, 0}); at != entries_.end() && at->first == *hash; ++at) {
        rows.push_back(RowId::FromWord(at->second));
    }
    return rows;
}

void HashIndex::Add(std::span<const Value> row, RowId id) {
    if (const auto hash = HashOfRow(columns_, row)) entries_.emplace(*hash, id.Word());
}

void HashIndex::Remove(std::span<const Value> row, RowId id) {
    if (const auto hash = HashOfRow(columns_, row)) entries_.erase({*hash, id.Word()});
}

}  // namespace tav::jet
