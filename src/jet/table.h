// The rows of one table.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/value.h"
#include "jet/index_tree.h"
#include "jet/table_definition.h"

namespace tav::jet {

class PageFile;

class Table {
 public:
    Table(PageFile& file, TableDefinition definition);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableDefinition& definition() const { return definition_; }
    IndexTree Index(std::size_t real_index);

    // One row's bytes. Values are decoded one by one, when asked for. Valid until the file's next Trim or
    // change.
    class Row {
     public:
        RowId id() const { return id_; }
        // By position in definition().columns.
        Value Get(std::size_t column) const;
        std::vector<Value> All() const;

     private:
        friend class Table;
        PageFile* file_ = nullptr;
        const TableDefinition* definition_ = nullptr;
        RowId id_;
        const std::uint8_t* bytes_ = nullptr;
        std::size_t size_ = 0;
    };

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
    };
    Scan Rows();

    // The row of that id; a Failure when there is none.
    Row Find(RowId id);

    // Values in the order of definition().columns, already of the columns' kinds (see ConvertForColumn). All
    // rules (length, range, Null, uniqueness, keys that can be made) are checked before the first byte
    // changes; a failure carries the database engine's usual message.
    RowId Insert(std::span<const Value> values);
    void Update(RowId id, std::span<const Value> values);
    void Delete(RowId id);

 private:
    PageFile* file_;
    TableDefinition definition_;
};

// A value as the column stores it: text into a number or a date by the regional form, numbers into text,
// integers checked for range ("Overflow"), text for length. What does not convert is DataTypeMismatch with
// column and value. Null stays Null.
Value ConvertForColumn(const Column& column, const Value& value);

}  // namespace tav::jet
