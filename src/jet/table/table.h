// The rows of one table.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "common/value.h"
#include "jet/index/index_tree.h"
#include "jet/schema/table_definition.h"
#include "jet/table/row.h"
#include "jet/table/row_encoding.h"
#include "jet/table/table_space.h"

namespace tav::jet {

class PageFile;

class Table {
 public:
    Table(PageFile& file, TableDefinition definition);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableDefinition& definition() const { return definition_; }
    // Those of the file (page_file.h): called between rows, a statement about a large table needs little
    // memory.
    void Trim();
    std::uint64_t Trims() const;
    IndexTree Index(std::size_t real_index);
    // Whether the index has as many entries as the table has rows, so that a search by it can be believed.
    // Looked at once; one that leaves out rows of Nulls is believed.
    bool HasWholeIndex(std::size_t real_index);

    using Row = jet::Row;

    // Walks all rows in page order, following moved rows. Rows may be deleted or updated meanwhile; rows
    // inserted then may or may not be met.
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
        Record record_;               // of the present row
        std::uint64_t trims_ = 0;     // when it was found
        std::uint64_t releases_ = 0;  // of the table, when the present page was last known to be the table's
    };
    Scan Rows();

    // The highest page with rows, 0 when there are none.
    PageNumber LastPage() { return space_.LastPage(); }

    // The row of that id; a Failure when there is none.
    Row Find(RowId id);
    // Whether there is one, and that is its key in the index.
    bool HasRow(RowId id, const RealIndex& index, std::string_view key) const;

    // A Failure that names table and column when rows cannot be changed safely (read_only.h).
    void RequireChangeable();

    // Values in the order of definition().columns, already of the columns' kinds (column_conversion.h). A
    // Null for an autonumber column becomes the next number. All rules (length, range, Null, uniqueness, keys
    // that can be made) are checked before the first byte changes; a failure carries the database engine's
    // usual message. What fails later (a full database, damage that is met on the way) is taken back with the
    // statement.
    RowId Insert(std::span<const Value> values);
    void Update(RowId id, std::span<const Value> values);
    // Some columns of a row get other values; where they can, in their places. Nothing is written when it has them.
    void Set(RowId id, std::span<const std::size_t> columns, std::span<const Value> values);
    // Rows that are there, each named once.
    void Delete(std::span<const RowId> rows);
    void Delete(RowId id) { Delete(std::span(&id, 1)); }

 private:
    PageFile* file_;
    TableDefinition definition_;
    TableSpace space_;
    std::vector<std::optional<bool>> whole_indexes_;    // by real index, once they were looked at
    std::optional<std::size_t> autonumber_;             // the column, if there is one
    std::optional<Text> why_read_only_;                 // once it was asked for
    std::map<std::uint16_t, RecordSpace> long_spaces_;  // by column number
    EncodedRow row_;                                    // the one being written

    void RequireOwn(PageNumber page) const;
    // A moved row is read whatever the flags of its body say.
    RowPlace FindPlace(RowId id) const;
    // The same for a row that is to be changed; its page must be the table's, its body one.
    RowPlace FindOwnPlace(RowId id) const;
    Row RowAt(const RowPlace& place) const;

    struct LongRecord {
        std::size_t column = 0;
        Pointer at;
    };
    bool IsSetInPlace(const Column& column, std::size_t position, const Value& value) const;
    bool SetInPlace(const RowPlace& place, const Row& row, std::span<const std::size_t> columns,
                    std::span<const Value> values);
    RecordSpace& LongSpace(std::size_t column);
    void CheckLongValues();
    void WriteLongValues();
    template <class Wanted>
    std::vector<LongRecord> LongRecords(const Row& row, Wanted wanted);
    void Drop(std::span<const LongRecord> records);

    Value NextAutonumber();
    void NoteAutonumber(std::span<const Value> values);
    void CountRows(std::int64_t difference);
};

}  // namespace tav::jet
