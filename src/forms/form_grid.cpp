#include "forms/form_grid.h"

#include <algorithm>
#include <numeric>

namespace tav {
namespace {

int Total(const std::vector<int>& lengths, int gap) {
    const int gaps = std::max(0, static_cast<int>(lengths.size()) - 1);
    return std::accumulate(lengths.begin(), lengths.end(), gap * gaps);
}

// Lengthens lines by `over` pixels in total, to lengths as equal as the lengths they had allow.
void Spread(std::vector<int*> lines, int over) {
    if (lines.empty() || over <= 0) return;
    std::sort(lines.begin(), lines.end(), [](const int* a, const int* b) { return *a < *b; });
    int total = std::accumulate(lines.begin(), lines.end(), over,
                                [](int sum, const int* line) { return sum + *line; });
    while (*lines.back() > total / static_cast<int>(lines.size())) {
        total -= *lines.back();
        lines.pop_back();
    }
    auto left = static_cast<int>(lines.size());
    for (int* line : lines) {
        *line = total / left--;
        total -= *line;
    }
}

// Those of the lines that grow.
std::vector<int*> Growing(std::vector<int>& lengths, const std::vector<bool>& grows, std::size_t first,
                          std::size_t count) {
    std::vector<int*> lines;
    for (std::size_t i = first; i < first + count; ++i) {
        if (grows[i]) lines.push_back(&lengths[i]);
    }
    return lines;
}

// Where each line of these lengths begins.
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
    return breaks ? cell.item->BrokenWidth() : cell.item->MinWidth();
}

int Grid::WidthOf(const Cell& cell, int width) const {
    const bool fills = cell.plan->kind == ControlKind::Label || GrowthOf(*cell.plan).width ||
                       !stretch_.Wide(cell.plan->place);
    return fills && !cell.item->KeepsWidth() ? width : std::min(width, cell.item->MinWidth());
}

int Grid::Spanned(const std::vector<int>& widths, const Place& place) const {
    const auto first = widths.begin() + place.column;
    return std::accumulate(first, first + place.column_span, gap_ * (place.column_span - 1));
}

// What one column alone holds comes first. Several columns are then widened where they grow, else all alike.
std::vector<int> Grid::MinWidths() const {
    std::vector<int> widths(stretch_.columns.size());
    const std::vector<bool> all(widths.size(), true);
    for (const bool several : {false, true}) {
        for (const Cell& cell : cells_) {
            const Place& place = cell.plan->place;
            if ((place.column_span > 1) != several) continue;
            Spread(
                Growing(widths, stretch_.Wide(place) ? stretch_.columns : all,
                        static_cast<std::size_t>(place.column), static_cast<std::size_t>(place.column_span)),
                MinWidthOf(cell) - Spanned(widths, place));
        }
    }
    return widths;
}

std::vector<int> Grid::Widths(int width) const {
    std::vector<int> widths = MinWidths();
    const int over = width - Total(widths, gap_);
    Spread(Growing(widths, stretch_.columns, 0, widths.size()), over);
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
    const int over = room.height - Total(heights, gap_);
    Spread(Growing(heights, stretch_.rows, 0, heights.size()), over);
    const std::vector<int> lefts = Starts(widths, room.x, gap_);
    const std::vector<int> tops = Starts(heights, room.y, gap_);
    for (const Cell& cell : cells_) {
        const Place& place = cell.plan->place;
        const auto row = static_cast<std::size_t>(place.row);
        Box box{lefts[static_cast<std::size_t>(place.column)], tops[row],
                WidthOf(cell, Spanned(widths, place)), heights[row]};
        const bool fills = GrowthOf(*cell.plan).height || cell.plan->kind == ControlKind::Frame;
        if (!fills) {
            box.height = std::min(heights[row], cell.item->HeightFor(box.width));
            if (!stretch_.rows[row]) box.y += (heights[row] - box.height) / 2;
        }
        cell.item->Put(box);
    }
}

}  // namespace tav
