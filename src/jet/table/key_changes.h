// What a change of one row, and what deleting rows, does to the indexes of their table.
//
// Keys are made and the rules of all indexes are checked before anything is written: required and primary
// indexes take no Null, unique ones no second row with the same key (an all-Null key may repeat).
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/value.h"
#include "jet/index/index_tree.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

class PageFile;
class Row;
class Table;

class KeyChanges {
 public:
    // Row values in the order of the table's columns; `before` is empty for a row that is inserted. A value that
    // has no key is a Failure that names column and index.
    KeyChanges(PageFile& file, const TableDefinition& table, std::span<const Value> before,
               std::span<const Value> after);

    // What breaks a rule is a Failure with the database engine's usual message. An entry that damage has left,
    // which leads to no row of `rows` with its key, breaks none: it goes.
    void Check(std::span<const Value> after, const Table& rows);
    // Removes and adds the entries of that row; counts keys that no row had.
    void Apply(RowId id);

 private:
    struct Change {
        IndexTree tree;
        std::string old_key = {};
        std::string new_key = {};
        bool had_entry = false;
        bool has_entry = false;
        bool is_new = false;           // no row had the new key yet
        std::vector<RowId> lost = {};  // what entries of the new key lead to, but is no row of it

        bool IsSame() const { return had_entry && has_entry && old_key == new_key; }
    };

    PageFile& file_;
    const TableDefinition& table_;
    std::vector<Change> changes_;  // of each real index
};

// The index entries of rows that are deleted together.
class EntriesToRemove {
 public:
    EntriesToRemove(PageFile& file, const TableDefinition& table);

    void Add(const Row& row);
    // Removes them all.
    void Apply();

 private:
    PageFile& file_;
    const TableDefinition& table_;
    std::vector<Value> values_;                      // of a row, those of columns that an index has
    std::vector<std::vector<std::string>> entries_;  // of each real index
};

}  // namespace tav::jet
