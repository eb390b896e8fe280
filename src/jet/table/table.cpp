#include "jet/table/table.h"

#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"

namespace tav::jet {

Table::Table(PageFile& file, TableDefinition definition) : file_(&file), definition_(std::move(definition)) {
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (column.IsAutonumber() && column.type == ColumnType::Long) autonumber_ = i;
    }
}

IndexTree Table::Index(std::size_t real_index) {
    return IndexTree(*file_, definition_, definition_.indexes.at(real_index));
}

bool Table::Owns(PageNumber page) const {
    return UsageMap(*file_, definition_.owned_map).Contains(page);
}

Table::Place Table::FindPlace(RowId id) const {
    const auto record_at = [&](Pointer at) {
        return RecordAt(*file_, at.page, ReadDataPage(*file_, at.page, definition_.page), at.slot);
    };
    Place place{id, id, record_at(id)};
    if ((place.record.flags & kSlotBody) != 0) {
        throw Failure(Text(u"Record is deleted. (").append(definition_.name).append(u")"));
    }
    if (place.record.flags == 0) return place;
    if (place.record.size < 4) file_->Damaged(id.page, u"a moved row does not say where it is");
    place.body = Pointer::FromWord(U32(file_->Read(id.page).data() + place.record.begin));
    if (!Owns(place.body.page)) file_->Damaged(id.page, u"a moved row lies outside its table");
    place.record = record_at(place.body);
    if (place.record.flags != kSlotBody) {
        file_->Damaged(id.page, u"a moved row is not where its pointer says");
    }
    return place;
}

Row Table::RowAt(const Place& place) const {
    const Page& page = file_->Read(place.body.page);
    return Row(*file_, definition_, place.home,
               std::span<const std::uint8_t>(page).subspan(place.record.begin, place.record.size));
}

Table::Place Table::FindOwnPlace(RowId id) const {
    if (!Owns(id.page)) {
        file_->Damaged(id.page, Text(u"table '").append(definition_.name).append(u"' has no rows there"));
    }
    return FindPlace(id);
}

Row Table::Find(RowId id) {
    return RowAt(FindOwnPlace(id));
}

Table::Scan Table::Rows() {
    Scan scan;
    scan.table_ = this;
    scan.pages_ = UsageMap(*file_, definition_.owned_map).Pages();
    scan.releases_ = releases_;
    scan.Next();
    return scan;
}

Row Table::Scan::row() const {
    return table_->RowAt(table_->FindPlace({pages_[page_], static_cast<std::uint8_t>(slot_)}));
}

void Table::Scan::Next() {
    for (; page_ < pages_.size(); ++page_, slot_ = -1) {
        const PageNumber number = pages_[page_];
        // Emptied pages go back to the file and may be something else by now.
        if (releases_ != table_->releases_ && !table_->Owns(number)) continue;
        const Page& page = ReadDataPage(*table_->file_, number, table_->definition_.page);
        for (++slot_; slot_ < static_cast<int>(SlotCount(page)); ++slot_) {
            const Record record = RecordAt(*table_->file_, number, page, static_cast<unsigned>(slot_));
            if ((record.flags & kSlotBody) == 0) return;
        }
    }
    at_end_ = true;
}

}  // namespace tav::jet
