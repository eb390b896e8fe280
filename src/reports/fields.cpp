#include "reports/fields.h"

#include "common/failure.h"
#include "db/literals.h"
#include "reports/cells.h"

namespace tav {

Text FieldText(const Recordset& row, TextView field) {
    return HtmlText(isns(row.Field(field)));
}

std::int64_t WholeNumber(const Recordset& row, TextView field) {
    if (const auto number = WholeNumberOf(row.Field(field))) return *number;
    throw Failure(RunTimeError::TypeMismatch, field);
}

}  // namespace tav
