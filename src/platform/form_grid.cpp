#include "platform/form_grid.h"

#include <algorithm>
#include <numeric>

namespace tav {
namespace {

int Total(const std::vector<int>& lengths, int gap) {
    const int gaps = std::max(0, static_cast<int>(lengths.size()) - 1);
    return std::accumulate(lengths.begin(), lengths.end(), gap * gaps);
}

// Hands `over` pixels to the lines that grow, equally.
void Spread(std::vector<int>& lengths, const std::vector<bool>& grows, int over) {
    auto lines = static_cast<int>(std::count(grows.begin(), grows.end(), true));
    for (std::size_t i = 0; i < lengths.size() && over > 0; ++i) {
        if (!grows[i]) continue;
        const int share = over / lines--;
        lengths[i] += share;
        over -= share;
    }
}

// Where the line before which these lengths stand begins.
std::vector<int> Starts(const std::vector<int>& lengths, int from, int gap) {
    std::vector<int> starts;
    for (const int length : lengths) {
        starts.push_back(from);
        from += length + gap;
    }
    return starts;
}

}  // namespace

int Grid::MinWidthOf(const Cell& cell) const {
    const bool breaks = cell.plan->kind == ControlKind::Label && stretch_.Wide(cell.plan->place);
    return breaks ? 1 : cell.item->MinWidth();
}

int Grid::WidthOf(const Cell& cell, int width) const {
    const ControlKind kind = cell.plan->kind;
    const bool own = kind == ControlKind::PictureButton || kind == ControlKind::Picture ||
                     (kind != ControlKind::Label && stretch_.Wide(cell.plan->place));
    return own && !GrowthOf(kind).width ? std::min(width, cell.item->MinWidth()) : width;
}

int Grid::Spanned(const std::vector<int>& widths, const Place& place) const {
    const auto first = widths.begin() + place.column;
    return std::accumulate(first, first + place.column_span, gap_ * (place.column_span - 1));
}

// What one column alone holds comes first; several columns are then widened in the last one that grows.
std::vector<int> Grid::MinWidths() const {
    std::vector<int> widths(stretch_.columns.size());
    for (const bool several : {false, true}) {
        for (const Cell& cell : cells_) {
            const Place& place = cell.plan->place;
            if ((place.column_span > 1) != several) continue;
            const int lacking = MinWidthOf(cell) - Spanned(widths, place);
            if (lacking <= 0) continue;
            auto column = static_cast<std::size_t>(place.column + place.column_span - 1);
            if (stretch_.Wide(place)) {
                while (!stretch_.columns[column]) --column;
            }
            widths[column] += lacking;
        }
    }
    return widths;
}

std::vector<int> Grid::Widths(int width) const {
    std::vector<int> widths = MinWidths();
    Spread(widths, stretch_.columns, width - Total(widths, gap_));
    return widths;
}

std::vector<int> Grid::Heights(const std::vector<int>& widths) const {
    std::vector<int> heights(stretch_.rows.size());
    for (const Cell& cell : cells_) {
        int& height = heights[static_cast<std::size_t>(cell.plan->place.row)];
        height = std::max(height, cell.item->HeightFor(WidthOf(cell, Spanned(widths, cell.plan->place))));
    }
    return heights;
}

int Grid::MinWidth() const {
    return Total(MinWidths(), gap_);
}

int Grid::HeightFor(int width) const {
    return Total(Heights(Widths(width)), gap_);
}

void Grid::Arrange(const Box& room) {
    const std::vector<int> widths = Widths(room.width);
    std::vector<int> heights = Heights(widths);
    Spread(heights, stretch_.rows, room.height - Total(heights, gap_));
    const std::vector<int> lefts = Starts(widths, room.x, gap_);
    const std::vector<int> tops = Starts(heights, room.y, gap_);
    for (const Cell& cell : cells_) {
        const Place& place = cell.plan->place;
        const auto row = static_cast<std::size_t>(place.row);
        Box box{lefts[static_cast<std::size_t>(place.column)], tops[row],
                WidthOf(cell, Spanned(widths, place)), heights[row]};
        const bool fills = GrowthOf(cell.plan->kind).height || cell.plan->kind == ControlKind::Frame;
        if (!fills) {
            box.height = std::min(heights[row], cell.item->HeightFor(box.width));
            if (!stretch_.rows[row]) box.y += (heights[row] - box.height) / 2;
        }
        cell.item->Put(box);
    }
}

}  // namespace tav
