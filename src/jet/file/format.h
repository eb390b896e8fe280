// The vocabulary of the Jet 4 file: pages, pointers, little-endian fields.
//
// A database is a sequence of pages of 4096 bytes, numbered from 0. Numbers are little-endian, but for index
// entries, which are big-endian so that entries sort as byte strings.
#pragma once

#include <array>
#include <bit>
#include <compare>
#include <cstdint>
#include <cstring>
#include <functional>

namespace tav::jet {

inline constexpr std::size_t kPageSize = 4096;
using Page = std::array<std::uint8_t, kPageSize>;
using PageNumber = std::uint32_t;
// Where the bytes of a page begin in the file.
constexpr std::uint64_t Offset(PageNumber page) {
    return static_cast<std::uint64_t>(page) * kPageSize;
}

enum class PageType : std::uint8_t {
    Data = 1,
    TableDefinition = 2,
    IndexNode = 3,
    IndexLeaf = 4,
    UsageBitmap = 5
};

// A record's place: page and slot. On disk a u32, page << 8 | slot. The place where a row was inserted is its
// row id; it never changes while the row lives.
struct Pointer {
    PageNumber page = 0;
    std::uint8_t slot = 0;

    static Pointer FromWord(std::uint32_t word) {
        return {word >> 8, static_cast<std::uint8_t>(word & 0xFF)};
    }
    std::uint32_t Word() const { return page << 8 | slot; }
    auto operator<=>(const Pointer&) const = default;
};
using RowId = Pointer;

inline std::uint16_t U16(const std::uint8_t* at) {
    return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}
inline std::uint32_t U32(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8 |
           static_cast<std::uint32_t>(at[2]) << 16 | static_cast<std::uint32_t>(at[3]) << 24;
}
inline void PutU16(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void PutU32(std::uint8_t* at, std::uint32_t value) {
    PutU16(at, static_cast<std::uint16_t>(value));
    PutU16(at + 2, static_cast<std::uint16_t>(value >> 16));
}
inline std::uint32_t BigU32(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

inline std::uint64_t U64(const std::uint8_t* at) {
    return U32(at) | static_cast<std::uint64_t>(U32(at + 4)) << 32;
}
inline void PutU64(std::uint8_t* at, std::uint64_t value) {
    PutU32(at, static_cast<std::uint32_t>(value));
    PutU32(at + 4, static_cast<std::uint32_t>(value >> 32));
}
inline double DoubleAt(const std::uint8_t* at) {
    return std::bit_cast<double>(U64(at));
}

}  // namespace tav::jet

template <>
struct std::hash<tav::jet::Pointer> {
    std::size_t operator()(const tav::jet::Pointer& pointer) const noexcept {
        return std::hash<std::uint32_t>()(pointer.Word());
    }
};
