// The blocks of a table definition: their sizes and constants.
//
// The definition is the first page whole and the other pages without their headers of 8 bytes. Behind the
// header come, each as often as the header says: index counters, column blocks, column names, real index
// blocks, logical index blocks, index names; then long-value entries up to the end mark.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tav::jet::layout {

inline constexpr std::uint32_t kConstant = 1625;       // in the header, columns and logical indexes
inline constexpr std::uint32_t kIndexConstant = 1923;  // in real indexes
inline constexpr std::size_t kPageHeader = 8;
inline constexpr std::size_t kHeader = 63;
inline constexpr std::size_t kCounter = 12;
inline constexpr std::size_t kColumn = 25;
inline constexpr std::size_t kRealIndex = 52;
inline constexpr std::size_t kLogicalIndex = 28;
inline constexpr std::size_t kLongValue = 10;
inline constexpr std::size_t kIndexPlaces = 10;     // columns of an index
inline constexpr std::uint16_t kNoColumn = 0xFFFF;  // an unused place; the end mark

}  // namespace tav::jet::layout
