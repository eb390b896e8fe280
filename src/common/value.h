// One value of a database row.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "common/date.h"
#include "common/text.h"

namespace tav {

// Nothing known; equal to no value in SQL.
struct Null {
    bool operator==(const Null&) const = default;
};

// An amount of money in ten-thousandths of the currency unit, exact.
struct Money {
    std::int64_t ten_thousandths = 0;

    auto operator<=>(const Money&) const = default;
};

// Bytes without a meaning here (binary and GUID columns).
struct Binary {
    std::string bytes;

    bool operator==(const Binary&) const = default;
};

// The kinds a column of the database file may hold. Byte, integer and long
// columns are std::int64_t here, single and double columns are double. A
// recordset never gives bool (SQL has -1 and 0) or Money (it gives double).
using Value = std::variant<Null, bool, std::int64_t, double, Money, Date, Text, Binary>;

inline bool IsNull(const Value& value) {
    return std::holds_alternative<Null>(value);
}

}  // namespace tav
