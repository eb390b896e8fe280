// SQLite's handles, closed by their owners, and its failures in the usual words.
#pragma once

#include <sqlite3.h>

#include <memory>

#include "common/failure.h"
#include "jet/sql_scope.h"

namespace tav::jet {

struct SqliteCloser {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, SqliteCloser>;

// An empty SQLite in memory with the dialect's collation and functions, that does nothing but select, insert,
// update and delete on virtual tables, within narrow limits. Its own encoding is UTF-16.
SqliteHandle OpenSqlite();

// What SQLite says about the last call, for a statement of that kind.
Failure SqliteFailure(sqlite3* database, StatementKind kind);

}  // namespace tav::jet
