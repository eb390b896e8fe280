// What the database holds of a file, to be compared with the rows that its document would be stored as.
#pragma once

#include <map>
#include <vector>

#include "common/text.h"
#include "db/connection.h"

namespace tav {

class HeldRows {
 public:
    HeldRows(Connection& connection, const Text& file);

    // The next row that the document would be stored as: an insert whose first column is the number.
    void Compare(const SqlText& insert);
    // Whether every row compared is held in its place, and no other one is.
    bool AreTheSame();

 private:
    // The rows of one table, of one document after the other.
    struct Rows {
        std::vector<Recordset> documents;
        std::size_t at = 0;  // the document whose row is next

        bool AtEnd();
    };

    std::map<Text, Rows> tables_;
    bool same_ = true;
};

}  // namespace tav
