#include "jet/table/table.h"

#include <algorithm>
#include <cstring>

#include "common/concat.h"
#include "common/database_failure.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/index/index_key.h"
#include "jet/schema/definition_layout.h"
#include "jet/table/key_changes.h"
#include "jet/table/read_only.h"
#include "jet/table/row_encoding.h"

namespace tav::jet {
namespace {

constexpr TextView kNullAutonumber =
    u"You tried to assign the Null value to a variable that is not a Variant data type.";

}  // namespace

Table::Table(PageFile& file, TableDefinition definition)
    : file_(&file),
      definition_(std::move(definition)),
      space_(file, definition_),
      whole_indexes_(definition_.indexes.size()) {
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (column.IsAutonumber() && column.type == ColumnType::Long) autonumber_ = i;
    }
}

IndexTree Table::Index(std::size_t real_index) {
    return IndexTree(*file_, definition_, definition_.indexes.at(real_index));
}

void Table::Trim() {
    file_->Trim();
}

std::uint64_t Table::Trims() const {
    return file_->Trims();
}

RowPlace Table::FindPlace(RowId id) const {
    const auto record_at = [&](Pointer at) {
        return RecordAt(*file_, at.page, ReadDataPage(*file_, at.page, definition_.page), at.slot);
    };
    RowPlace place{id, id, record_at(id)};
    if ((place.record.flags & kSlotBody) != 0) {
        throw Failure(Concat(u"Record is deleted. (", definition_.name, u")"));
    }
    if (place.record.flags == 0) return place;
    if (place.record.size < 4) file_->Damaged(id.page, u"a moved row does not say where it is");
    place.body = Pointer::FromWord(U32(file_->Read(id.page).data() + place.record.begin));
    if (!space_.pages().Owns(place.body.page)) file_->Damaged(id.page, u"a moved row lies outside its table");
    place.record = record_at(place.body);
    return place;
}

Row Table::RowAt(const RowPlace& place) const {
    const Page& page = file_->Read(place.body.page);
    return Row(*file_, definition_, place.home,
               std::span<const std::uint8_t>(page).subspan(place.record.begin, place.record.size));
}

void Table::RequireOwn(PageNumber page) const {
    if (space_.pages().Owns(page)) return;
    file_->Damaged(page, Concat(u"table '", definition_.name, u"' has no rows there"));
}

RowPlace Table::FindOwnPlace(RowId id) const {
    RequireOwn(id.page);
    const RowPlace place = FindPlace(id);
    if (place.body != place.home && place.record.flags != kSlotBody) {
        file_->Damaged(id.page, u"a moved row is not where its pointer says");
    }
    return place;
}

Row Table::Find(RowId id) {
    RequireOwn(id.page);
    return RowAt(FindPlace(id));
}

bool Table::HasRow(RowId id, const RealIndex& index, std::string_view key) const {
    if (!space_.pages().Owns(id.page)) return false;
    const Page& page = ReadDataPage(*file_, id.page, definition_.page);
    if (id.slot >= SlotCount(page) || (RecordAt(*file_, id.page, page, id.slot).flags & kSlotBody) != 0)
        return false;
    const Row row = RowAt(FindPlace(id));
    std::vector<Value> values(definition_.columns.size());
    for (const IndexColumn& part : index.columns) values[part.column] = row.Get(part.column);
    return EncodeKey(definition_, index, values) == key;
}

bool Table::HasWholeIndex(std::size_t real_index) {
    if (definition_.indexes.at(real_index).ignores_nulls) return true;
    std::optional<bool>& whole = whole_indexes_[real_index];
    if (whole) return *whole;
    std::uint64_t entries = 0;
    try {
        entries = Index(real_index).CountEntries();
    } catch (const DatabaseFailure&) {
        return *(whole = false);
    }
    whole = entries == U32(file_->Read(definition_.page).data() + layout::kRowCountAt);
    if (*whole) return true;
    std::uint64_t rows = 0;  // which the count may not be
    for (Scan scan = Rows(); !scan.AtEnd(); scan.Next(), Trim()) ++rows;
    whole = entries == rows;
    return *whole;
}

Table::Scan Table::Rows() {
    Scan scan;
    scan.table_ = this;
    scan.pages_ = UsageMap(*file_, definition_.owned_map).Pages();
    scan.releases_ = space_.pages().releases();
    scan.Next();
    return scan;
}

Row Table::Scan::row() const {
    const RowId id{pages_[page_], static_cast<std::uint8_t>(slot_)};
    if (record_.flags == 0 && trims_ == table_->Trims()) return table_->RowAt({id, id, record_});
    return table_->RowAt(table_->FindPlace(id));
}

void Table::Scan::Next() {
    for (; page_ < pages_.size(); ++page_, slot_ = -1) {
        const PageNumber number = pages_[page_];
        // Emptied pages go back to the file and may be something else by now.
        if (releases_ != table_->space_.pages().releases() && !table_->space_.pages().Owns(number)) continue;
        const Page& page = ReadDataPage(*table_->file_, number, table_->definition_.page);
        for (++slot_; slot_ < static_cast<int>(SlotCount(page)); ++slot_) {
            record_ = RecordAt(*table_->file_, number, page, static_cast<unsigned>(slot_));
            trims_ = table_->Trims();
            if ((record_.flags & kSlotBody) == 0) return;
        }
    }
    at_end_ = true;
}

void Table::RequireChangeable() {
    if (!why_read_only_) why_read_only_ = jet::WhyReadOnly(definition_);
    if (!why_read_only_->empty()) throw DatabaseFailure(*why_read_only_);
}

Value Table::NextAutonumber() {
    const std::uint32_t last = U32(file_->Read(definition_.page).data() + layout::kAutonumberAt);
    return std::int64_t{static_cast<std::int32_t>(last + 1)};
}

void Table::NoteAutonumber(std::span<const Value> values) {
    if (!autonumber_ || IsNull(values[*autonumber_])) return;
    const std::int64_t given = std::get<std::int64_t>(values[*autonumber_]);
    std::uint8_t* last = file_->Change(definition_.page).data() + layout::kAutonumberAt;
    if (given > static_cast<std::int32_t>(U32(last))) PutU32(last, static_cast<std::uint32_t>(given));
}

void Table::CountRows(std::int64_t difference) {
    std::uint8_t* count = file_->Change(definition_.page).data() + layout::kRowCountAt;
    const std::int64_t rows = std::int64_t{U32(count)} + difference;
    PutU32(count, static_cast<std::uint32_t>(std::clamp<std::int64_t>(rows, 0, UINT32_MAX)));
}

RowId Table::Insert(std::span<const Value> given) {
    RequireChangeable();
    std::vector<Value> filled;
    std::span<const Value> values = given;
    if (autonumber_ && *autonumber_ < given.size() && IsNull(given[*autonumber_])) {
        filled.assign(given.begin(), given.end());
        filled[*autonumber_] = NextAutonumber();
        values = filled;
    }
    EncodeRow(definition_, values, row_);
    KeyChanges keys(*file_, definition_, {}, values);
    keys.Check(values, *this);
    CheckLongValues();

    WriteLongValues();
    const RowId id = space_.Add(row_.bytes);
    keys.Apply(id);
    CountRows(1);
    NoteAutonumber(values);
    return id;
}

void Table::Update(RowId id, std::span<const Value> values) {
    RequireChangeable();
    const RowPlace place = FindOwnPlace(id);
    const Row row = RowAt(place);
    const std::vector<Value> old_values = row.All();
    if (autonumber_ && IsNull(values[*autonumber_]) && !IsNull(old_values[*autonumber_])) {
        throw Failure(kNullAutonumber).In(definition_.columns[*autonumber_].name);
    }
    const OldRow old{&row, old_values};
    EncodeRow(definition_, values, row_, old);
    KeyChanges keys(*file_, definition_, old_values, values);
    keys.Check(values, *this);
    CheckLongValues();
    const std::vector<LongRecord> dropped =
        LongRecords(row, [&](std::size_t column) { return !old.Keeps(column, values[column]); });

    WriteLongValues();
    space_.Replace(place, row_.bytes);
    keys.Apply(id);
    Drop(dropped);
    NoteAutonumber(values);
}

// Without a change of the row's size, of an index or of the table's counters.
bool Table::IsSetInPlace(const Column& column, std::size_t position, const Value& value) const {
    const auto has_column = [&](const RealIndex& index) {
        return std::ranges::find(index.columns, position, &IndexColumn::column) != index.columns.end();
    };
    return column.IsFixed() && column.type != ColumnType::Boolean && !column.refuses_empty &&
           autonumber_ != position && !(column.required && IsNull(value)) &&
           std::ranges::none_of(definition_.indexes, has_column);
}

bool Table::SetInPlace(const RowPlace& place, const Row& row, std::span<const std::size_t> columns,
                       std::span<const Value> values) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!row.FixedPlace(columns[i]) ||
            !IsSetInPlace(definition_.columns[columns[i]], columns[i], values[i]))
            return false;
    }
    std::string& bytes = row_.bytes;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = definition_.columns[columns[i]];
        bytes.clear();
        AppendFixedValue(bytes, definition_, column, values[i]);
        const std::size_t at = place.record.begin + *row.FixedPlace(columns[i]);
        const std::size_t mask = place.record.begin + row.MaskPlace(columns[i]);
        const Page& page = file_->Read(place.body.page);
        const auto bit = static_cast<std::uint8_t>(1u << column.number % 8);
        const auto marks =
            static_cast<std::uint8_t>(IsNull(values[i]) ? page[mask] & ~bit : page[mask] | bit);
        if (page[mask] == marks && std::memcmp(page.data() + at, bytes.data(), bytes.size()) == 0) continue;
        Page& changed = file_->Change(place.body.page);
        std::memcpy(changed.data() + at, bytes.data(), bytes.size());
        changed[mask] = marks;
    }
    return true;
}

void Table::Set(RowId id, std::span<const std::size_t> columns, std::span<const Value> values) {
    RequireChangeable();
    const RowPlace place = FindOwnPlace(id);
    const Row row = RowAt(place);
    if (SetInPlace(place, row, columns, values)) return;
    const std::vector<Value> before = row.All();
    std::vector<Value> after = before;
    for (std::size_t i = 0; i < columns.size(); ++i) after[columns[i]] = values[i];
    if (after != before) Update(id, after);
}

void Table::Delete(std::span<const RowId> rows) {
    RequireChangeable();
    EntriesToRemove entries(*file_, definition_);
    std::vector<Pointer> slots;
    std::vector<LongRecord> dropped;
    slots.reserve(rows.size());
    for (const RowId id : rows) {
        Trim();
        const RowPlace place = FindOwnPlace(id);
        const Row row = RowAt(place);
        entries.Add(row);
        slots.push_back(place.home);
        if (place.body != place.home) slots.push_back(place.body);
        if (definition_.long_values.empty()) continue;
        const std::vector<LongRecord> records = LongRecords(row, [](std::size_t) { return true; });
        dropped.insert(dropped.end(), records.begin(), records.end());
    }

    entries.Apply();
    space_.Drop(std::move(slots));
    Drop(dropped);
    CountRows(-static_cast<std::int64_t>(rows.size()));
}

// The pages of a column's long values.
RecordSpace& Table::LongSpace(std::size_t column) {
    const std::uint16_t number = definition_.columns[column].number;
    const auto known = long_spaces_.find(number);
    if (known != long_spaces_.end()) return known->second;
    const auto maps = std::ranges::find(definition_.long_values, number, &LongValueMaps::column_number);
    if (maps == definition_.long_values.end() || maps->owned.page == 0) {
        throw Failure(Concat(u"Cannot update table '", definition_.name, u"': column '",
                             definition_.columns[column].name, u"' has no pages for long values."));
    }
    return long_spaces_
        .emplace(number,
                 RecordSpace(*file_, kLongValueOwner, maps->owned, maps->free, RecordSpace::Order::Any))
        .first->second;
}

void Table::CheckLongValues() {
    for (const EncodedRow::Distant& value : row_.distant) LongSpace(value.column);
}

// Puts the heads of what is written into the row's bytes.
void Table::WriteLongValues() {
    for (const EncodedRow::Distant& value : row_.distant) {
        const std::string head = WriteLongValue(*file_, LongSpace(value.column), value.data);
        row_.bytes.replace(value.head_at, head.size(), head);
    }
}

// The records outside the row of those of its columns, each checked to be the column's.
template <class Wanted>
std::vector<Table::LongRecord> Table::LongRecords(const Row& row, Wanted wanted) {
    std::vector<LongRecord> records;
    for (const LongValueMaps& maps : definition_.long_values) {
        const auto column = std::ranges::find(definition_.columns, maps.column_number, &Column::number);
        const auto position = static_cast<std::size_t>(column - definition_.columns.begin());
        if (column == definition_.columns.end() || !wanted(position)) continue;
        for (const Pointer record : row.LongRecords(position)) {
            if (!LongSpace(position).Owns(record.page)) {
                file_->Damaged(record.page, Concat(u"it has no long values of column '", column->name,
                                                   u"' of table '", definition_.name, u"'"));
            }
            records.push_back({position, record});
        }
    }
    return records;
}

void Table::Drop(std::span<const LongRecord> records) {
    std::map<std::size_t, std::vector<Pointer>> slots;
    for (const LongRecord& record : records) slots[record.column].push_back(record.at);
    for (auto& [column, of_column] : slots) LongSpace(column).Drop(std::move(of_column));
}

}  // namespace tav::jet
