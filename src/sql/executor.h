// Executes Jet SQL on a database file: an in-memory SQLite over virtual tables that are the file's own
// tables.
#pragma once

#include <memory>
#include <span>

#include "common/text.h"
#include "jet/table/database.h"
#include "sql/recordset.h"
#include "sql/sql_text.h"

namespace tav::jet {

class Executor {
 public:
    // The file is opened and locked until the executor goes. `together` are tables that are of use together only:
    // when rows of one of them cannot be changed (jet/table/read_only.h), no statement changes anything.
    Executor(TextView path, Database::Access access, std::span<const TextView> together = {});
    ~Executor();
    Executor(const Executor&) = delete;
    Executor& operator=(const Executor&) = delete;

    // Exactly one statement: select, insert, update or delete on the tables there are. A statement that fails
    // leaves the file as it was. Changes become part of the present unit of work.
    Recordset Execute(const SqlText& sql);
    // The same for statements that return no rows, one after the other. Updates that differ in their values only
    // are one statement then: they need one walk through their table together.
    void ExecuteAll(std::span<const SqlText> statements);
    // Gives `take` the rows of a select one after the other. Those of a list of one table's columns, all rows of it,
    // are not gathered first.
    void ForEachRow(const SqlText& sql, const TakeRow& take);

    // What is executed since SetSavepoint is taken back by RollBackToSavepoint, or kept. There is one savepoint at
    // a time; Commit releases it.
    void SetSavepoint();
    void ReleaseSavepoint();
    void RollBackToSavepoint();

    // What was executed since the last time reaches the disk, as a whole.
    void Commit();

    Database& database();

 private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tav::jet
