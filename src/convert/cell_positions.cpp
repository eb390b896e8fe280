#include "convert/cell_positions.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace tav {

constexpr CellPosition kCellPositions[26] = {
    {612, "##<p01>"},   {1542, "##<p02>"},    {597, "##<p01>"},  {1557, "##<p02>"},   {2427, "##<p03>"},
    {3417, "##<p04>"},  {4317, "##<p05>"},    {5097, "##<p06>"}, {6027, "##<p07>"},   {6957, "##<p08>"},
    {7902, "##<p09>"},  {8682, "##<p10>"},    {9927, "##<p11>"}, {11157, "##<p12>"},  {12327, "##<p13>"},
    {13707, "##<p14>"}, {3747, "##v<h@@>"},   {642, "##<p00>"},  {10377, "##v<h@@>"}, {6222, "##v<h@@>"},
    {627, "##a<h@@>"},  {5457, "##a<p@@@@>"}, {4302, "##<p05>"}, {5082, "##<p06>"},   {9942, "##<p11>"},
    {8697, "##<p10>"},
};

namespace {

constexpr std::string_view kPosition = "posx";
constexpr std::string_view kUnknownPosition = "##|";

constexpr std::size_t kFarthest = std::ranges::max_element(kCellPositions, {}, &CellPosition::twips)->twips;

// Which row of the table each position has, counted from 1; 0 where the table has none.
constexpr auto kRowOfTwips = [] {
    std::array<std::uint8_t, kFarthest + 1> rows{};
    for (std::size_t i = 0; i < std::size(kCellPositions); ++i)
        rows[kCellPositions[i].twips] = static_cast<std::uint8_t>(i + 1);
    return rows;
}();

// The tag of the position whose digits begin the text; takes those digits from it.
std::string_view TakePosition(std::string_view& text) {
    std::size_t twips = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digit = static_cast<unsigned char>(text[i] - '0');
        if (digit > 9 || (i == 0 && digit == 0)) break;
        twips = twips * 10 + digit;
        if (twips > kFarthest) break;
        if (const std::size_t row = kRowOfTwips[twips]; row != 0) {
            text.remove_prefix(i + 1);
            return kCellPositions[row - 1].tag;
        }
    }
    return kUnknownPosition;
}

}  // namespace

std::string ReplaceCellPositions(std::string_view text) {
    std::string out;
    AppendWithTags(out, text);
    return out;
}

void AppendWithTags(std::string& out, std::string_view text) {
    for (std::size_t at; (at = text.find(kPosition)) != text.npos;) {
        out.append(text.substr(0, at));
        text.remove_prefix(at + kPosition.size());
        out.append(TakePosition(text));
    }
    out.append(text);
}

}  // namespace tav
