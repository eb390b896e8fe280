// A grid of rows and columns for toolkits without layouts of their own: how
// wide and high its items are, and where each goes. Lengths are pixels.
#pragma once

#include <vector>

#include "forms/form_stretch.h"

namespace tav {

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Box&) const = default;
};

// What a grid holds: a control, or a frame with a grid in it.
class GridItem {
 public:
    virtual ~GridItem() = default;
    virtual int MinWidth() const = 0;
    // The same where its lines may be broken.
    virtual int BrokenWidth() const { return MinWidth(); }
    // Whether it is never wider.
    virtual bool KeepsWidth() const { return false; }
    // The height it needs at this width.
    virtual int HeightFor(int width) const = 0;
    virtual void Put(const Box& box) = 0;
};

// What grows takes the spare room. What does not grow keeps its size in a row or column
// that does. A label there may break its lines, and its text does not widen the grid.
class Grid {
 public:
    void SetStretch(Stretch stretch) { stretch_ = std::move(stretch); }
    // Between rows and between columns.
    void SetGap(int gap) { gap_ = gap; }
    // The item and the plan outlive the grid.
    void Add(GridItem& item, const ControlPlan& plan) { cells_.push_back({&item, &plan}); }

    int MinWidth() const;
    int HeightFor(int width) const;
    // Places every item. Where the room is too small, items reach beyond its right and lower edge.
    void Arrange(const Box& room);

 private:
    struct Cell {
        GridItem* item;
        const ControlPlan* plan;
    };
    int MinWidthOf(const Cell& cell) const;
    // The width of an item in a cell of this width.
    int WidthOf(const Cell& cell, int width) const;
    int Spanned(const std::vector<int>& widths, const Place& place) const;
    std::vector<int> MinWidths() const;
    std::vector<int> Widths(int width) const;
    std::vector<int> Heights(const std::vector<int>& widths) const;

    std::vector<Cell> cells_;
    Stretch stretch_;
    int gap_ = 0;
};

}  // namespace tav
