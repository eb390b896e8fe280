// Where the bytes of a table's rows go: after its last row, in the order they come.
//
// New rows take the highest page of the table, or a new one with a higher number, so that a scan meets rows in
// the order they were inserted. A row that outgrows its page moves: its slot keeps a pointer to the body. A page
// whose last row is deleted goes back to the file; else a table that is cleared and filled again and again
// would grow for ever.
#pragma once

#include <optional>
#include <string_view>

#include "jet/file/data_page.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

class PageFile;

// Where a row stands: its id's slot, and the slot that has its bytes, another one when the row was moved.
struct RowPlace {
    Pointer home;
    Pointer body;
    Record record;  // of the body
};

class TableSpace {
 public:
    // Both outlive the space.
    TableSpace(PageFile& file, const TableDefinition& definition) : file_(&file), definition_(&definition) {}

    bool Owns(PageNumber page) const;
    // The highest page with rows, 0 when there are none.
    PageNumber LastPage();
    // Pages given back to the file since the table was opened.
    std::uint64_t releases() const { return releases_; }

    RowId Add(std::string_view row) { return AddRecordOf(row, 0); }
    // Puts a row in the place of another: where its bytes are when they fit, else elsewhere with a pointer left
    // in its home.
    void Replace(const RowPlace& place, std::string_view row);
    void Remove(const RowPlace& place);

 private:
    Pointer AddRecordOf(std::string_view row, std::uint16_t flags);
    PageNumber PageFor(std::size_t size);
    void Drop(Pointer at);
    void ReleasePage(PageNumber page);

    PageFile* file_;
    const TableDefinition* definition_;
    std::uint64_t releases_ = 0;

    // At hand, so that a row costs the same in a large table as in a small one. Read again after a rollback.
    std::optional<std::uint64_t> known_since_;  // the file's count of rollbacks then
    PageNumber last_page_ = 0;                  // the highest owned page, 0 for none
};

}  // namespace tav::jet
