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
        const auto rest = static_cast<unsigned>(bits[at / 8] >> (at % 8));
        if (rest != 0) return std::min(end, at + static_cast<PageNumber>(std::countr_zero(rest)));
        at = (at / 8 + 1) * 8;
    }
    return end;
}

// How many bits are set below `end`.
inline PageNumber CountBits(const std::uint8_t* bits, PageNumber end) {
    PageNumber count = 0;
    for (PageNumber byte = 0; byte < end / 8; ++byte) {
        count += static_cast<PageNumber>(std::popcount(bits[byte]));
    }
    for (PageNumber at = end / 8 * 8; at < end; ++at) count += Bit(bits, at) ? 1 : 0;
    return count;
}

}  // namespace tav::jet
