#include "sql/recordset.h"

#include "common/failure.h"

namespace tav {
namespace {

const std::vector<Value>& RowOf(const ResultTable* table, std::size_t row) {
    if (table != nullptr && row < table->rows.size()) return table->rows[row];
    throw Failure(
        u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
        u"requires a current record.");
}

const Value& FieldOf(const ResultTable* table, std::size_t row, std::size_t ordinal) {
    if (table != nullptr && ordinal < table->names.size()) return RowOf(table, row)[ordinal];
    throw Failure(u"Item cannot be found in the collection corresponding to the requested name or ordinal.");
}

}  // namespace

std::span<const Value> Recordset::Row() const {
    return RowOf(table_.get(), row_);
}

const Value& Recordset::Field(std::size_t ordinal) const {
    return FieldOf(table_.get(), row_, ordinal);
}

const Value& Recordset::Field(TextView name) const {
    const std::size_t columns = table_ == nullptr ? 0 : table_->names.size();
    std::size_t ordinal = 0;
    while (ordinal < columns && !EqualNoCase(table_->names[ordinal], name)) ++ordinal;
    return FieldOf(table_.get(), row_, ordinal);
}

}  // namespace tav
