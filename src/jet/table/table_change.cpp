// Insert, update and delete: the rules, the indexes and the counters. Where the bytes go is in
// table_space.cpp.
#include <algorithm>

#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/index/index_key.h"
#include "jet/table/read_only.h"
#include "jet/table/table.h"

namespace tav::jet {
namespace {

constexpr std::size_t kRowCountAt = 16;     // on the definition's first page
constexpr std::size_t kAutonumberAt = 20;   // likewise
constexpr std::size_t kDistinctKeysAt = 4;  // in an index counter

constexpr TextView kNullKey = u"Index or primary key cannot contain a Null value.";
constexpr TextView kDuplicate =
    u"The changes you requested to the table were not successful because they would create duplicate values "
    u"in "
    u"the index, primary key, or relationship. Change the data in the field or fields that contain duplicate "
    u"data, remove the index, or redefine the index to permit duplicate entries and try again.";

constexpr TextView kNullAutonumber =
    u"You tried to assign the Null value to a variable that is not a Variant data type.";

bool AnyNull(const RealIndex& index, std::span<const Value> values) {
    return std::any_of(index.columns.begin(), index.columns.end(),
                       [&](const IndexColumn& column) { return IsNull(values[column.column]); });
}

bool HasEntry(const RealIndex& index, std::span<const Value> values) {
    return !index.ignores_nulls || !AllNull(index, values);
}

}  // namespace

void Table::RefuseReadOnly() {
    if (!why_read_only_) why_read_only_ = jet::WhyReadOnly(definition_);
    if (!why_read_only_->empty()) throw Failure(*why_read_only_);
}

std::vector<Table::KeyChange> Table::NewKeys(std::span<const Value> values) {
    std::vector<KeyChange> changes(definition_.indexes.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const RealIndex& index = definition_.indexes[i];
        changes[i].index = i;
        changes[i].has_entry = HasEntry(index, values);
        if (changes[i].has_entry) changes[i].new_key = EncodeKey(definition_, index, values);
    }
    return changes;
}

std::vector<Table::KeyChange> Table::OldKeys(std::span<const Value> values) {
    std::vector<KeyChange> changes = NewKeys(values);
    for (KeyChange& change : changes) {
        change.old_key.swap(change.new_key);
        std::swap(change.had_entry, change.has_entry);
    }
    return changes;
}

// The rules of every index, before anything is written. An all-Null key may repeat in a unique index.
void Table::CheckKeys(std::span<KeyChange> changes, std::span<const Value> values) {
    for (KeyChange& change : changes) {
        const RealIndex& index = definition_.indexes[change.index];
        if ((index.required || index.primary) && AnyNull(index, values)) {
            throw Failure(kNullKey).In(definition_.name);
        }
        if (!change.has_entry || (change.had_entry && change.old_key == change.new_key)) continue;
        change.is_new = !Index(change.index).HasKey(change.new_key);
        const bool unique = index.unique || index.primary;
        if (unique && !change.is_new && !AllNull(index, values))
            throw Failure(kDuplicate).In(definition_.name);
    }
}

void Table::ApplyKeys(std::span<const KeyChange> changes, RowId id) {
    for (const KeyChange& change : changes) {
        if (change.had_entry && change.has_entry && change.old_key == change.new_key) continue;
        IndexTree tree = Index(change.index);
        if (change.had_entry) tree.Remove(change.old_key, id);
        if (change.has_entry) tree.Add(change.new_key, id);
        if (!change.is_new) continue;
        std::uint8_t* counter = file_->Change(definition_.page).data() +
                                definition_.indexes[change.index].counter_at + kDistinctKeysAt;
        PutU32(counter, U32(counter) + 1);
    }
}

Value Table::NextAutonumber() {
    const std::uint32_t last = U32(file_->Read(definition_.page).data() + kAutonumberAt);
    return std::int64_t{static_cast<std::int32_t>(last + 1)};
}

void Table::NoteAutonumber(std::span<const Value> values) {
    if (!autonumber_ || IsNull(values[*autonumber_])) return;
    const std::int64_t given = std::get<std::int64_t>(values[*autonumber_]);
    std::uint8_t* last = file_->Change(definition_.page).data() + kAutonumberAt;
    if (given > static_cast<std::int32_t>(U32(last))) PutU32(last, static_cast<std::uint32_t>(given));
}

void Table::CountRows(int difference) {
    std::uint8_t* count = file_->Change(definition_.page).data() + kRowCountAt;
    const std::int64_t rows = std::int64_t{U32(count)} + difference;
    PutU32(count, static_cast<std::uint32_t>(std::clamp<std::int64_t>(rows, 0, UINT32_MAX)));
}

RowId Table::Insert(std::span<const Value> given) {
    RefuseReadOnly();
    std::vector<Value> filled;
    std::span<const Value> values = given;
    if (autonumber_ && *autonumber_ < given.size() && IsNull(given[*autonumber_])) {
        filled.assign(given.begin(), given.end());
        filled[*autonumber_] = NextAutonumber();
        values = filled;
    }
    EncodeRow(definition_, values, row_bytes_);
    std::vector<KeyChange> keys = NewKeys(values);
    CheckKeys(keys, values);

    const RowId id = AddRow(0);
    ApplyKeys(keys, id);
    CountRows(1);
    NoteAutonumber(values);
    return id;
}

void Table::Update(RowId id, std::span<const Value> values) {
    RefuseReadOnly();
    const Place place = FindOwnPlace(id);
    const std::vector<Value> old_values = ChangeableRow(place);
    if (autonumber_ && IsNull(values[*autonumber_]) && !IsNull(old_values[*autonumber_])) {
        throw Failure(kNullAutonumber).In(definition_.columns[*autonumber_].name);
    }
    EncodeRow(definition_, values, row_bytes_);
    std::vector<KeyChange> keys = OldKeys(old_values);
    std::vector<KeyChange> fresh = NewKeys(values);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i].new_key = std::move(fresh[i].new_key);
        keys[i].has_entry = fresh[i].has_entry;
    }
    CheckKeys(keys, values);

    ReplaceRow(place);
    ApplyKeys(keys, id);
    NoteAutonumber(values);
}

void Table::Delete(RowId id) {
    RefuseReadOnly();
    const Place place = FindOwnPlace(id);
    const std::vector<KeyChange> keys = OldKeys(ChangeableRow(place));

    ApplyKeys(keys, id);
    if (place.body != place.home) DropRow(place.body);
    DropRow(place.home);
    CountRows(-1);
}

// The values of a row that may be changed. Long values with records of their own would be left behind.
std::vector<Value> Table::ChangeableRow(const Place& place) {
    const Row row = RowAt(place);
    if (row.HasDistantValues()) {
        throw Failure(Text(u"Cannot update table '")
                          .append(definition_.name)
                          .append(u"': the row has a long memo or OLE value, which is not supported."));
    }
    return row.All();
}

}  // namespace tav::jet
