#include "jet/table/key_changes.h"

#include <algorithm>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/index/index_key.h"
#include "jet/schema/definition_layout.h"
#include "jet/table/row.h"
#include "jet/table/table.h"

namespace tav::jet {
namespace {

constexpr TextView kDuplicate =
    u"The changes you requested to the table were not successful because they would create duplicate values in "
    u"the index, primary key, or relationship. Change the data in the field or fields that contain duplicate "
    u"data, remove the index, or redefine the index to permit duplicate entries and try again.";

void RefuseNulls(const TableDefinition& table, const RealIndex& index, std::span<const Value> values) {
    for (const IndexColumn& part : index.columns) {
        if (!IsNull(values[part.column])) continue;
        throw Failure(u"Index or primary key cannot contain a Null value.")
            .In(Concat(table.name, u".", table.columns[part.column].name));
    }
}

// The row's key, if it has an entry in the index.
bool MakeKey(const TableDefinition& table, const RealIndex& index, std::span<const Value> values,
             std::string& key) {
    if (values.empty() || (index.ignores_nulls && AllNull(index, values))) return false;
    key = EncodeKey(table, index, values);
    return true;
}

}  // namespace

KeyChanges::KeyChanges(PageFile& file, const TableDefinition& table, std::span<const Value> before,
                       std::span<const Value> after)
    : file_(file), table_(table) {
    changes_.reserve(table.indexes.size());
    for (const RealIndex& index : table.indexes) {
        Change& change = changes_.emplace_back(Change{IndexTree(file, table, index)});
        change.had_entry = MakeKey(table, index, before, change.old_key);
        change.has_entry = MakeKey(table, index, after, change.new_key);
    }
}

void KeyChanges::Check(std::span<const Value> after, const Table& rows) {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const RealIndex& index = table_.indexes[i];
        Change& change = changes_[i];
        if (index.required || index.primary) RefuseNulls(table_, index, after);
        if (!change.has_entry || change.IsSame()) continue;
        change.is_new = !change.tree.HasKey(change.new_key);
        const bool unique = index.unique || index.primary;
        if (!unique || change.is_new || AllNull(index, after)) continue;
        const std::string& key = change.new_key;
        for (IndexTree::Cursor at = change.tree.Seek(key); !at.AtEnd() && at.key() == key; at.Next()) {
            if (rows.HasRow(at.row(), index, key)) throw Failure(kDuplicate).In(table_.name);
            change.lost.push_back(at.row());
        }
    }
}

void KeyChanges::Apply(RowId id) {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const RealIndex& index = table_.indexes[i];
        Change& change = changes_[i];
        if (change.IsSame()) continue;
        for (const RowId lost : change.lost) change.tree.Remove(change.new_key, lost);
        if (change.had_entry) change.tree.Remove(change.old_key, id);
        if (change.has_entry) change.tree.Add(change.new_key, id);
        if (!change.is_new) continue;
        std::uint8_t* counter = file_.Change(table_.page).data() + index.counter_at + layout::kDistinctKeysAt;
        PutU32(counter, U32(counter) + 1);
    }
}

EntriesToRemove::EntriesToRemove(PageFile& file, const TableDefinition& table)
    : file_(file), table_(table), values_(table.columns.size()), entries_(table.indexes.size()) {}

void EntriesToRemove::Add(const Row& row) {
    for (const RealIndex& index : table_.indexes) {
        for (const IndexColumn& part : index.columns) values_[part.column] = row.Get(part.column);
    }
    std::string key;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (MakeKey(table_, table_.indexes[i], values_, key))
            entries_[i].push_back(IndexTree::EntryOf(key, row.id()));
    }
}

void EntriesToRemove::Apply() {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        std::ranges::sort(entries_[i]);
        IndexTree(file_, table_, table_.indexes[i]).Remove(entries_[i]);
    }
}

}  // namespace tav::jet
