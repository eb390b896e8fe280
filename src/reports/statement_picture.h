// What a statement's picture shows (pdf/sheet.h), taken from its rows while they are written.
#pragma once

#include <vector>

#include "common/value.h"
#include "db/connection.h"
#include "pdf/sheet.h"

namespace tav {

class StatementPicture {
 public:
    // `picture` may be null, then nothing is taken.
    explicit StatementPicture(BalancePicture* picture) : picture_(picture) {}

    // The rows of the selects in reports/statement_columns.h.
    void TakeOpening(const Recordset& balance);
    void TakeOperation(const Recordset& operation);
    // Draws up the picture of the period between these days, and of what lies outside of it. A statement of no
    // known period has none.
    void Finish(const Value& begin, const Value& end);

 private:
    struct Operation {
        double day = 0;
        double charged = 0;
        double paid = 0;
    };
    BalancePicture* picture_;
    std::vector<Operation> operations_;
};

}  // namespace tav
