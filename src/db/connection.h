// The connection every procedure opens for itself, uses, and lets go.
//
// Work is done by Execute of one literal SQL text each; there are no explicit transactions. Behind it stands
// the native engine (jet/executor.h), the only one on Linux.
#pragma once

#include <memory>

#include "common/text.h"
#include "jet/recordset.h"
#include "jet/sql_text.h"

namespace tav {

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

    // The statements executed so far reach the disk together (one unit per source file). Nothing a caller can
    // see changes.
    void EndUnit();
    // How much room there is for more, in bytes: pages inside the file that are free, and what it may grow
    // by.
    std::uint64_t RoomLeft() const;

    void Close();

 private:
    struct State;
    std::unique_ptr<State> state_;
};

// The connection string of a database file.
Text ConnectionString(TextView database_path);

}  // namespace tav
