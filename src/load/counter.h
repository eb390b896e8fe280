// The numbers the database gives out: 16-bit, continued from the highest there is.
#pragma once

#include <cstdint>

#include "common/value.h"

namespace tav {

class Counter {
 public:
    // Nothing was given out so far.
    Counter() = default;
    // The highest number given out so far as a query returned it; Null counts as 0. A number that 16 bits
    // cannot hold is "Overflow", a value that is no number "Type mismatch".
    explicit Counter(const Value& highest);

    std::int16_t value() const { return value_; }
    // The next number; past 32767 "Overflow".
    std::int16_t Next();

 private:
    std::int16_t value_ = 0;
};

}  // namespace tav
