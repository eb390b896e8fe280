// Bits of a page-number bitmap: page i of the bitmap is bit i % 8 of byte i / 8.
#pragma once

#include <algorithm>
#include <bit>

#include "jet/file/format.h"

namespace tav::jet {

inline bool Bit(const std::uint8_t* bits, PageNumber at) {
    return (bits[at / 8] >> (at % 8) & 1) != 0;
}

inline void SetBit(std::uint8_t* bits, PageNumber at, bool value) {
    const auto mask = static_cast<std::uint8_t>(1 << at % 8);
    bits[at / 8] = static_cast<std::uint8_t>(value ? bits[at / 8] | mask : bits[at / 8] & ~mask);
}

// The first set bit from `at` on, or `end`.
inline PageNumber FindBit(const std::uint8_t* bits, PageNumber at, PageNumber end) {
    while (at < end) {
        if (at % 8 == 0 && end - at >= 64 && U64(bits + at / 8) == 0) {
            at += 64;
            continue;
        }
        const auto rest = static_cast<unsigned>(bits[at / 8] >> (at % 8));
        if (rest != 0) return std::min(end, at + static_cast<PageNumber>(std::countr_zero(rest)));
        at = (at / 8 + 1) * 8;
    }
    return end;
}

// The last set bit below `end`, or `end`.
inline PageNumber FindLastBit(const std::uint8_t* bits, PageNumber end) {
    for (PageNumber at = end; at-- > 0;) {
        if (at % 8 == 7 && bits[at / 8] == 0) {
            at -= 7;
        } else if (Bit(bits, at)) {
            return at;
        }
    }
    return end;
}

}  // namespace tav::jet
