// The connection every procedure opens for itself, uses, and lets go.
//
// Work is done by Execute of one literal SQL text each; there are no explicit transactions. Behind it stands
// an engine (db/engine.h): the native one, the only one on Linux, or on Windows that of an ADO provider.
#pragma once

#include <memory>
#include <span>

#include "common/text.h"
#include "sql/recordset.h"
#include "sql/sql_text.h"

namespace tav {

class Engine;
struct OpenRequest;
struct TextSize;

class Connection {
 public:
    Connection();
    ~Connection();  // closes; what was executed stays, and a failure to keep it is shown, not thrown
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // 3: cursors on the client side, so that RecordCount is known.
    int CursorLocation = 2;

    // "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" followed by the full path of the database file. The
    // file stays locked until Close.
    void Open(TextView connection_string);
    // Opens for reading only: others may read at the same time. (The reports.)
    void OpenForReading(TextView connection_string);

    Recordset Execute(const SqlText& sql);
    Recordset Execute(TextView sql) { return Execute(SqlText(sql)); }
    // Statements that return no rows, one after the other. Updates of one shape cost little more than one of them.
    void ExecuteAll(std::span<const SqlText> statements);
    // Gives `take` the rows of a select one after the other: many rows need little memory.
    void ForEachRow(const SqlText& sql, const TakeRow& take);

    // The statements executed so far reach the disk together. Nothing a caller can see changes.
    void EndUnit();
    // What is executed since SetSavepoint is taken back by RollBackToSavepoint, or kept by ReleaseSavepoint.
    // There is one savepoint at a time, and no EndUnit between the two.
    void SetSavepoint();
    void ReleaseSavepoint();
    void RollBackToSavepoint();
    // The text columns of a table that have a size; a memo has none.
    std::vector<TextSize> TextSizes(TextView table);
    // How much room there is for more, in bytes: pages inside the file that are free, and what it may grow
    // by.
    std::uint64_t RoomLeft() const;

    void Close();

 private:
    void Open(const OpenRequest& request);
    Engine& Opened() const;

    std::unique_ptr<Engine> engine_;
};

// The connection string of a database file.
Text ConnectionString(TextView database_path);

}  // namespace tav
