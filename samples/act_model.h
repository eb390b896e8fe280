// What an act of reconciliation says: 101 lines, numbered as the form numbers them ("1.1.1.1" is 1111), in
// the order of the exchange format. The printed form has the same lines with 3142 after 32 instead of before.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "samples/generator.h"

namespace tav::samples {

inline constexpr std::size_t kActLines = 101;

struct ActLine {
    int code;
    const char16_t* path;  // of the element below section 2 that holds the amount
};

extern const std::array<ActLine, kActLines> kActLineTable;

// "p0011", "p1111"
std::string ActField(int code);

struct ActAmounts {
    // Kopecks, in the order of kActLineTable.
    std::array<long long, kActLines> lines{};
    Sums sums;
};

// Amounts that agree: what is owed at the end is what was owed at the begin, plus what was charged, minus
// what was paid; totals are the sums of their parts.
ActAmounts MakeActAmounts(std::uint64_t seed, bool all_zero);

}  // namespace tav::samples
