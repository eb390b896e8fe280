// A table of the file as SQLite sees it: a virtual table of the same name.
#pragma once

#include <sqlite3.h>

#include <exception>
#include <vector>

#include "jet/table.h"
#include "jet/table_search.h"

namespace tav::jet {

// What a callback threw; it must not cross SQLite, so it waits here until SQLite has returned.
class PendingFailure {
 public:
    void Keep() noexcept { failure_ = std::current_exception(); }
    void Forget() noexcept { failure_ = nullptr; }
    void Rethrow() {
        if (failure_ != nullptr) std::rethrow_exception(std::exchange(failure_, nullptr));
    }

 private:
    std::exception_ptr failure_;
};

class VirtualTable {
 public:
    // Everything given outlives the table, and the table outlives the SQLite connection.
    VirtualTable(Table& table, PendingFailure& pending);
    VirtualTable(const VirtualTable&) = delete;
    VirtualTable& operator=(const VirtualTable&) = delete;

    void Register(sqlite3* database);

    Table& table() { return table_; }
    TableSearch& search() { return search_; }
    PendingFailure& pending() { return pending_; }
    // "create table" as SQLite wants it declared.
    std::string Declaration() const;

    RowId Insert(sqlite3_value** values);
    void Update(RowId id, sqlite3_value** values);
    void Delete(RowId id);

 private:
    void Take(std::size_t column, sqlite3_value* value);

    Table& table_;
    PendingFailure& pending_;
    TableSearch search_;
    std::vector<Value> row_;  // of the change being made; kept, so that its texts keep their memory
    Value literal_;
};

}  // namespace tav::jet
