// A row's values as the bytes of row.h.
#pragma once

#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "common/value.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

class Row;

inline constexpr TextView kFieldTooSmall =
    u"The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less "
    u"data.";

// A row's bytes. Long values that do not go into it have heads of zeros there: they are still to be written.
struct EncodedRow {
    struct Distant {
        std::size_t column = 0;   // position in definition.columns
        std::size_t head_at = 0;  // offset in `bytes`
        std::string data;
    };
    std::string bytes;
    std::vector<Distant> distant;
};

// The row that is replaced. Values that stay equal keep their stored bytes: those of a long value outside the
// row, those of a Decimal that no number of this program holds.
struct OldRow {
    const Row* row = nullptr;
    std::span<const Value> values;

    // What is no number equals nothing, itself included.
    bool Keeps(std::size_t column, const Value& value) const {
        if (row == nullptr) return false;
        const auto* old = std::get_if<double>(&values[column]);
        const auto* now = std::get_if<double>(&value);
        return values[column] == value ||
               (old != nullptr && now != nullptr && std::isnan(*old) && std::isnan(*now));
    }
};

// Encodes values (in the order of definition.columns) into `out`. What a column cannot hold is a Failure with
// the database engine's usual words: a Null in a required column, an empty text where none may be, texts that
// are too long, numbers out of range, kinds that were not converted, records that are too long.
void EncodeRow(const TableDefinition& definition, std::span<const Value> values, EncodedRow& out,
               const OldRow& old = {});

// Appends the bytes of one value of a fixed column, no boolean; those of a Null are zeros.
void AppendFixedValue(std::string& out, const TableDefinition& table, const Column& column,
                      const Value& value);

}  // namespace tav::jet
