// The rows a select returned, all of them (a client-side cursor): RecordCount is known.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "common/text.h"
#include "common/value.h"

namespace tav {

struct ResultTable {
    std::vector<Text> names;
    std::vector<std::vector<Value>> rows;
};

// Takes one row of a select. It uses no connection meanwhile.
using TakeRow = std::function<void(std::span<const Value> row)>;

class Recordset {
 public:
    Recordset() = default;
    explicit Recordset(ResultTable table) : table_(std::make_shared<ResultTable>(std::move(table))) {}

    bool Eof() const { return table_ == nullptr || row_ >= table_->rows.size(); }
    void MoveNext() { ++row_; }
    // Of a select; 0 after a statement that returns no rows.
    std::size_t FieldCount() const { return table_ == nullptr ? 0 : table_->names.size(); }
    const Text& FieldName(std::size_t ordinal) const { return table_->names.at(ordinal); }
    int RecordCount() const { return table_ == nullptr ? 0 : static_cast<int>(table_->rows.size()); }

    // The current row's fields; past the last row a Failure.
    std::span<const Value> Row() const;
    // The current row's field by ordinal or by name (letter case ignored, the first of that name). Past the
    // last row, or without such a field, a Failure with the usual words.
    const Value& Field(std::size_t ordinal) const;
    const Value& Field(TextView name) const;

 private:
    std::shared_ptr<ResultTable> table_;
    std::size_t row_ = 0;
};

}  // namespace tav
