#include "sql/hash_index.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "sql/sql_value.h"

namespace tav::jet {
namespace {

constexpr std::size_t kMostRows = 8 << 20;  // 64 MB
constexpr unsigned kHashBits = 32;          // of an entry

// Changes that are kept apart: so many, or one for so many rows if that is more.
constexpr std::size_t kFewChanges = 4096;
constexpr std::size_t kRowsPerChange = 32;

// The hash of several values, given one by one; nothing when one is Null.
template <class ValueAt>
std::optional<std::uint32_t> HashOf(std::size_t count, ValueAt value_at) {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Value& value = value_at(i);
        if (IsNull(value)) return std::nullopt;
        hash = (hash ^ HashValue(value)) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 29;
    }
    return static_cast<std::uint32_t>(hash >> kHashBits);
}

std::uint64_t Packed(std::uint32_t hash, std::uint32_t word) {
    return std::uint64_t{hash} << kHashBits | word;
}

}  // namespace

std::optional<HashIndex> HashIndex::Of(Table& table, std::vector<std::size_t> columns) {
    HashIndex made(std::move(columns));
    Value value;
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const Table::Row row = scan.row();
        const auto hash = HashOf(made.columns_.size(), [&](std::size_t i) -> const Value& {
            return value = row.Get(made.columns_[i]);
        });
        if (hash && made.entries_.size() == kMostRows) return std::nullopt;
        if (hash) made.entries_.push_back(Packed(*hash, row.id().Word()));
        table.Trim();
    }
    std::ranges::sort(made.entries_);
    return made;
}

std::optional<HashIndex::Entry> HashIndex::EntryOf(std::span<const Value> row, RowId id) const {
    const auto hash =
        HashOf(columns_.size(), [&](std::size_t i) -> const Value& { return row[columns_[i]]; });
    if (!hash) return std::nullopt;
    return Packed(*hash, id.Word());
}

std::vector<RowId> HashIndex::Find(std::span<const Value> values) const {
    std::vector<RowId> rows;
    const auto hash = HashOf(values.size(), [&](std::size_t i) -> const Value& { return values[i]; });
    if (!hash) return rows;
    const Entry low = Packed(*hash, 0);
    const Entry high = Packed(*hash, UINT32_MAX);
    const auto row_of = [](Entry entry) { return RowId::FromWord(static_cast<std::uint32_t>(entry)); };
    const auto begin = std::ranges::lower_bound(entries_, low);
    const auto end = std::upper_bound(begin, entries_.end(), high);
    rows.reserve(static_cast<std::size_t>(end - begin));
    for (auto at = begin; at != end; ++at) {
        if (removed_.empty() || !removed_.contains(*at)) rows.push_back(row_of(*at));
    }
    const auto merged = static_cast<std::ptrdiff_t>(rows.size());
    for (auto at = added_.lower_bound(low); at != added_.end() && *at <= high; ++at)
        rows.push_back(row_of(*at));
    std::ranges::inplace_merge(rows, rows.begin() + merged);
    return rows;
}

void HashIndex::Add(std::span<const Value> row, RowId id) {
    const std::optional<Entry> entry = EntryOf(row, id);
    if (!entry || removed_.erase(*entry) != 0) return;
    added_.insert(*entry);
    MergeMany();
}

void HashIndex::Remove(std::span<const Value> row, RowId id) {
    const std::optional<Entry> entry = EntryOf(row, id);
    if (!entry || added_.erase(*entry) != 0) return;
    removed_.insert(*entry);
    MergeMany();
}

void HashIndex::MergeMany() {
    if (added_.size() + removed_.size() < std::max(kFewChanges, entries_.size() / kRowsPerChange)) return;
    auto gone = removed_.begin();
    std::erase_if(entries_, [&](Entry entry) {
        while (gone != removed_.end() && *gone < entry) ++gone;
        return gone != removed_.end() && *gone == entry;
    });
    const auto merged = static_cast<std::ptrdiff_t>(entries_.size());
    entries_.reserve(entries_.size() + added_.size());
    entries_.insert(entries_.end(), added_.begin(), added_.end());
    std::ranges::inplace_merge(entries_, entries_.begin() + merged);
    added_.clear();
    removed_.clear();
}

}  // namespace tav::jet
