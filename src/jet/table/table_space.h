// Where the bytes of a table's rows go: after its last row, in the order they come, so that a scan meets rows in
// the order they were inserted. A row that outgrows its page moves: its slot keeps a pointer to the body.
#pragma once

#include "jet/schema/table_definition.h"
#include "jet/table/record_space.h"

namespace tav::jet {

// Where a row stands: its id's slot, and the slot that has its bytes, another one when the row was moved.
struct RowPlace {
    Pointer home;
    Pointer body;
    Record record;  // of the body
};

class TableSpace {
 public:
    // Both outlive the space.
    TableSpace(PageFile& file, const TableDefinition& table);

    const RecordSpace& pages() const { return pages_; }
    // The highest page with rows, 0 when there are none.
    PageNumber LastPage() { return pages_.OpenPage(); }

    RowId Add(std::string_view row) { return pages_.Add(row, 0); }
    // Puts a row in the place of another: where its bytes are when they fit, else elsewhere with a pointer left
    // in its home.
    void Replace(const RowPlace& place, std::string_view row);
    // Frees slots of rows, those of moved bodies among them.
    void Drop(std::vector<Pointer> slots) { pages_.Drop(std::move(slots)); }

 private:
    PageFile* file_;
    const TableDefinition* table_;
    RecordSpace pages_;
};

}  // namespace tav::jet
