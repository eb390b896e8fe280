// SQLite's handles, closed by their owners, and its failures in the usual words.
#pragma once

#include <sqlite3.h>

#include <exception>
#include <memory>
#include <utility>

#include "common/failure.h"
#include "sql/sql_scope.h"

namespace tav::jet {

struct SqliteCloser {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, SqliteCloser>;

// What passes between SQLite's callbacks and the calls that SQLite made them in.
class Callbacks {
 public:
    // What a callback threw must not cross SQLite; it waits here until SQLite has returned.
    void Keep() noexcept { failure_ = std::current_exception(); }
    void Rethrow() {
        if (failure_ != nullptr) std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    // While a table is declared, SQLite writes to its own catalogue.
    bool declares_table = false;
    // While a statement is prepared that ignores repeated rows, the scans planned for it may leave them out.
    bool ignores_repeats = false;

 private:
    std::exception_ptr failure_;
};

// An empty SQLite in memory with the dialect's collation and functions, that
// does nothing but select, insert, update and delete on virtual tables,
// within narrow limits. Its own encoding is UTF-16. `callbacks` outlives it.
SqliteHandle OpenSqlite(Callbacks& callbacks);

// What SQLite says about the last call, for a statement of that kind.
Failure SqliteFailure(sqlite3* database, StatementKind kind);

}  // namespace tav::jet
