#include "jet/table/key_changes.h"

#include <algorithm>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/index/index_key.h"
#include "jet/index/index_tree.h"
#include "jet/schema/definition_layout.h"

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

KeyChanges::KeyChanges(const TableDefinition& table, std::span<const Value> before,
                       std::span<const Value> after)
    : table_(table), changes_(table.indexes.size()) {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const RealIndex& index = table.indexes[i];
        changes_[i].had_entry = MakeKey(table, index, before, changes_[i].old_key);
        changes_[i].has_entry = MakeKey(table, index, after, changes_[i].new_key);
    }
}

void KeyChanges::Check(PageFile& file, std::span<const Value> after) {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const RealIndex& index = table_.indexes[i];
        Change& change = changes_[i];
        if (index.required || index.primary) RefuseNulls(table_, index, after);
        if (!change.has_entry || change.IsSame()) continue;
        change.is_new = !IndexTree(file, table_, index).HasKey(change.new_key);
        const bool unique = index.unique || index.primary;
        if (unique && !change.is_new && !AllNull(index, after)) throw Failure(kDuplicate).In(table_.name);
    }
}

void KeyChanges::Apply(PageFile& file, RowId id) const {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const RealIndex& index = table_.indexes[i];
        const Change& change = changes_[i];
        if (change.IsSame()) continue;
        IndexTree tree(file, table_, index);
        if (change.had_entry) tree.Remove(change.old_key, id);
        if (change.has_entry) tree.Add(change.new_key, id);
        if (!change.is_new) continue;
        std::uint8_t* counter = file.Change(table_.page).data() + index.counter_at + layout::kDistinctKeysAt;
        PutU32(counter, U32(counter) + 1);
    }
}

}  // namespace tav::jet
