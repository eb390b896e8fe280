// Where everything of a sheet's table stands: the size of its letters, the columns' widths, the rows' heights
// and what fits onto each page.
//
// A column is at least as wide as its longest amount or word, in letters that get smaller until all columns
// fit; what is left over goes to the columns that have long texts.
#pragma once

#include <vector>

#include "pdf/qt/lettering.h"
#include "pdf/sheet.h"

namespace tav {

// A cell in the grid of its rows.
struct PlacedCell {
    const SheetCell* cell = nullptr;
    std::size_t row = 0;
    std::size_t column = 0;
};
// Spans are kept free as in a table of HTML.
std::vector<PlacedCell> PlaceCells(const std::vector<SheetRow>& rows);

// A text as lines of that width, which is for letters of one point.
std::vector<Text> LinesOf(TextView text, bool bold, double room, Lettering& lettering);

class SheetLayout {
 public:
    // `room` is the height of a page's contents, `first_room` what of it the table has on the first page.
    SheetLayout(const Sheet& sheet, Lettering& lettering, double width, double room, double first_room);

    double points() const { return points_; }
    double Edge(std::size_t column) const { return edges_[column]; }
    std::size_t columns() const { return edges_.size() - 1; }
    const std::vector<PlacedCell>& headings() const { return headings_; }
    const std::vector<double>& heading_heights() const { return heading_heights_; }
    double RowHeight(std::size_t row) const { return heights_[row]; }
    // The first row of each page, and after them the number of rows.
    const std::vector<std::size_t>& pages() const { return pages_; }

    // A text's lines in a cell over these columns.
    std::vector<Text> Lines(const SheetCell& cell, std::size_t column) const;

    static constexpr double kSidePadding = 1.6 * kPoint;
    static constexpr double kPadding = 1.0 * kPoint;

 private:
    void ChooseColumns(const Sheet& sheet, double width);
    void MeasureHeadings(const Sheet& sheet);
    double HeightOf(std::size_t lines) const;
    std::size_t LineCount(const SheetCell& cell, std::size_t column) const {
        return Lines(cell, column).size();
    }

    Lettering& lettering_;
    double points_ = 0;
    std::vector<double> edges_;
    std::vector<PlacedCell> headings_;
    std::vector<double> heading_heights_;
    std::vector<double> heights_;
    std::vector<std::size_t> pages_;
};

}  // namespace tav
