// A table of the file as SQLite sees it: a virtual table of the same name.
#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "jet/table/table.h"
#include "sql/change_log.h"
#include "sql/plain_statement.h"
#include "sql/sqlite_handles.h"
#include "sql/table_search.h"

namespace tav::jet {

class VirtualTable {
 public:
    // Everything given outlives the table, and the table outlives the SQLite connection.
    VirtualTable(Table& table, Callbacks& callbacks);
    VirtualTable(const VirtualTable&) = delete;
    VirtualTable& operator=(const VirtualTable&) = delete;

    void Register(sqlite3* database);

    Table& table() { return table_; }
    TableSearch& search() { return search_; }
    ChangeLog& log() { return log_; }
    Callbacks& callbacks() { return callbacks_; }
    // "create table" as SQLite wants it declared.
    std::string Declaration() const;

    // Which columns the inserts that follow do not name: they get their defaults.
    void SetUnnamed(std::span<const std::size_t> columns) { unnamed_ = columns; }
    RowId Insert(sqlite3_value** values);
    void Update(RowId id, sqlite3_value** values);
    // A row that is inserted without SQLite: all Null at first, then its values, then the insert.
    void BeginRow() { std::ranges::fill(row_, Null()); }
    void Put(std::size_t column, TextView text);
    void Put(std::size_t column, const Value& value);
    RowId InsertRow();
    void Update(const PlainStatement& statement, std::span<const PlainUpdate> updates);
    void Delete(std::span<const RowId> rows);

 private:
    void Take(std::size_t column, sqlite3_value* value);

    Table& table_;
    Callbacks& callbacks_;
    TableSearch search_;
    ChangeLog log_{table_, search_};
    std::span<const std::size_t> unnamed_;
    std::vector<Value> row_;  // of the change being made
    Value literal_;
};

}  // namespace tav::jet
