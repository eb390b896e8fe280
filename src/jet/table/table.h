// The rows of one table.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/value.h"
#include "jet/file/data_page.h"
#include "jet/index/index_tree.h"
#include "jet/schema/table_definition.h"
#include "jet/table/row.h"

namespace tav::jet {

class PageFile;

class Table {
 public:
    Table(PageFile& file, TableDefinition definition);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableDefinition& definition() const { return definition_; }
    IndexTree Index(std::size_t real_index);

    using Row = jet::Row;

    // Walks all rows in page order, following moved rows. Rows may be deleted or updated behind it; rows
    // inserted meanwhile may or may not be met.
    class Scan {
     public:
        bool AtEnd() const { return at_end_; }
        Row row() const;
        void Next();

     private:
        friend class Table;
        Table* table_ = nullptr;
        std::vector<PageNumber> pages_;
        std::size_t page_ = 0;
        int slot_ = -1;
        bool at_end_ = false;
        std::uint64_t releases_ = 0;  // of the table, when the present page was last known to be the table's
    };
    Scan Rows();

    // The row of that id; a Failure when there is none.
    Row Find(RowId id);

    // Values in the order of definition().columns, already of the columns' kinds (see ConvertForColumn). A
    // Null for an autonumber column becomes the next number. All rules (length, range, Null, uniqueness, keys
    // that can be made) are checked before the first byte changes; a failure carries the database engine's
    // usual message. What fails later (a full database, damage that is met on the way) is taken back with the
    // statement.
    RowId Insert(std::span<const Value> values);
    void Update(RowId id, std::span<const Value> values);
    void Delete(RowId id);

 private:
    // Where a row stands: its id's slot, and the slot that has its bytes, another one when the row was moved.
    struct Place {
        Pointer home;
        Pointer body;
        Record record;  // of the body
    };

    // What a change does to one index.
    struct KeyChange {
        std::size_t index = 0;
        std::string old_key;
        std::string new_key;
        bool had_entry = false;
        bool has_entry = false;
        bool is_new = false;  // no row had the new key yet
    };

    PageFile* file_;
    TableDefinition definition_;
    std::optional<std::size_t> autonumber_;  // the column, if there is one
    std::uint64_t releases_ = 0;             // pages given back since the table was opened

    // What inserting needs at hand, so that a row costs the same in a large table as in a small one. Read
    // again after a rollback.
    std::optional<std::uint64_t> known_since_;  // the file's count of rollbacks then
    PageNumber last_page_ = 0;                  // the highest owned page, 0 for none
    std::optional<Text> why_read_only_;
    std::string row_bytes_;  // of the row being written

    bool Owns(PageNumber page) const;
    Place FindPlace(RowId id) const;
    // The same for a row that is to be changed; its page must be the table's.
    Place FindOwnPlace(RowId id) const;
    Row RowAt(const Place& place) const;
    std::vector<Value> ChangeableRow(const Place& place);

    void RefuseReadOnly();
    std::vector<KeyChange> NewKeys(std::span<const Value> values);
    std::vector<KeyChange> OldKeys(std::span<const Value> values);
    void CheckKeys(std::span<KeyChange> changes, std::span<const Value> values);
    void ApplyKeys(std::span<const KeyChange> changes, RowId id);
    Value NextAutonumber();
    void NoteAutonumber(std::span<const Value> values);
    void CountRows(int difference);

    Pointer AddRow(std::uint16_t flags);
    PageNumber PageFor(std::size_t size);
    std::span<const std::uint8_t> RowBytes() const;
    void ReplaceRow(const Place& place);
    void DropRow(Pointer at);
    void ReleasePage(PageNumber page);
};

// A value as the column stores it: text into a number or a date by the regional form, numbers into text,
// integers checked for range ("Overflow"), text for length. What does not convert is DataTypeMismatch with
// column and value. Null stays Null.
Value ConvertForColumn(const Column& column, const Value& value);

}  // namespace tav::jet
