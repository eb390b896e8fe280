// What a savepoint has to know of one table's rows, so that the table's hashes can follow when its pages are
// taken back.
#pragma once

#include <vector>

#include "common/value.h"
#include "jet/table/table.h"
#include "sql/table_search.h"

namespace tav::jet {

class ChangeLog {
 public:
    ChangeLog(Table& table, TableSearch& search) : table_(table), search_(search) {}

    // Notes what happens from now on, or no longer.
    void Begin();
    void End();

    void Inserted(RowId id);
    void Updated(RowId id, std::vector<Value> before);
    // More happened than is worth following.
    void Lose() { lost_ = lost_ || noting_; }

    std::size_t Length() const { return changes_.size(); }
    // The hashes become what they were when the log had that length. Called while the rows are still as the
    // changes left them.
    void TakeBack(std::size_t length);

 private:
    struct Change {
        RowId id;
        std::vector<Value> before;  // empty for a row that was inserted
    };

    void Note(Change change);

    Table& table_;
    TableSearch& search_;
    bool noting_ = false;
    bool lost_ = false;  // more happened than is worth following: the hashes are dropped instead
    std::vector<Change> changes_;
};

}  // namespace tav::jet
