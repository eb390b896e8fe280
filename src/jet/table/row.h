// Rows as bytes.
//
//     u16 column count c       the table's highest column number + 1 when the row was written
//     fixed area               values of the fixed columns at their offsets
//     variable values          in the order of their variable indexes, without gaps
//     (padding)                left where an update made the row shorter
//     u16 end of data          offset after the variable values
//     u16 x v                  their start offsets, the last one first
//     u16 v                    number of variable values
//     (c + 7) / 8 bytes        null mask: bit n set = column number n is present; a boolean's value
//
// A table without variable columns has no variable part. Rows older than a column lack it: it is Null there.
// A row is read from its end. It has at most 4060 bytes.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "common/value.h"
#include "jet/schema/table_definition.h"
#include "jet/table/long_value.h"

namespace tav::jet {

class PageFile;

// One row's bytes. Values are decoded one by one, when asked for; bytes that contradict the definition are a
// Failure that names file, page and slot. Valid until the file's next Trim or change.
class Row {
 public:
    Row() = default;
    Row(PageFile& file, const TableDefinition& definition, RowId id, std::span<const std::uint8_t> bytes);

    RowId id() const { return id_; }
    // By position in definition().columns. GUID and binary columns give the bytes as they are stored, a
    // numeric column the nearest double, an OLE column its bytes.
    Value Get(std::size_t column) const;
    std::vector<Value> All() const;
    // The bytes that a column's value has in the row; nothing for Null and for a boolean.
    std::optional<std::span<const std::uint8_t>> Stored(std::size_t column) const;
    // The offset of a fixed column's value in the row, whether it is Null or not. No value when the row has no place
    // for it: it is older than the column, or of another program and shorter.
    std::optional<std::size_t> FixedPlace(std::size_t column) const;
    // The offset of the byte of the null mask that has the column's bit (number % 8).
    std::size_t MaskPlace(std::size_t column) const {
        return mask_ + definition_->columns[column].number / 8u;
    }
    // The records of a memo or OLE value that lies outside the row.
    std::vector<Pointer> LongRecords(std::size_t column) const;

 private:
    PageFile* file_ = nullptr;
    const TableDefinition* definition_ = nullptr;
    RowId id_;
    std::span<const std::uint8_t> bytes_;
    std::size_t column_count_ = 0;
    std::size_t variable_count_ = 0;
    std::size_t mask_ = 0;  // offset of the null mask
    bool has_variable_part_ = false;

    bool IsPresent(const Column& column) const;
    bool HasVariable(const Column& column) const;
    std::span<const std::uint8_t> StoredOf(const Column& column) const;
    LongValue Long(const Column& column, std::span<const std::uint8_t> stored) const;
    Value Decode(const Column& column, std::span<const std::uint8_t> stored) const;
    [[noreturn]] void Damaged(const Column& column, TextView reason) const;
};

// Whether the date is of the years 100 to 9999.
bool IsDatabaseDate(Date date);

}  // namespace tav::jet
