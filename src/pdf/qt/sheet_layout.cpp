#include "pdf/qt/sheet_layout.h"

#include <algorithm>
#include <numeric>

namespace tav {
namespace {

constexpr double kLargest = 8.5;  // points
constexpr double kSmallest = 5;
constexpr double kStep = 0.25;

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// The length of the piece of text up to the next place where a line may end: after a space or a slash, and
// after a hyphen between two digits, as periods have it.
std::size_t PieceLength(TextView text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const bool hyphen = text[i] == u'-' && i > 0 && IsDigit(text[i - 1]) && IsDigit(text[i + 1]);
        if (text[i] == u' ' || text[i] == u'/' || hyphen) return i + 1;
    }
    return text.size();
}

TextView WithoutEndBlanks(TextView text) {
    while (text.ends_with(u' ')) text.remove_suffix(1);
    return text;
}

// Amounts stay in one piece.
bool IsOnePiece(const SheetCell& cell) {
    return cell.alignment == CellAlignment::Right;
}

double WidestPiece(const SheetCell& cell, Lettering& lettering) {
    double widest = 0;
    for (TextView rest = cell.text; !rest.empty();) {
        const std::size_t length = IsOnePiece(cell) ? rest.size() : PieceLength(rest);
        widest = std::max(widest, lettering.Width(WithoutEndBlanks(rest.substr(0, length)), cell.bold));
        rest.remove_prefix(length);
    }
    return widest;
}

}  // namespace

std::vector<Text> LinesOf(TextView text, bool bold, double room, Lettering& lettering) {
    // A little more than there is, against sums that differ in the last digit.
    const auto fits = [&](TextView part) {
        return lettering.Width(WithoutEndBlanks(part), bold) <= room * 1.0001;
    };
    std::vector<Text> lines;
    Text line;
    while (!text.empty()) {
        std::size_t length = PieceLength(text);
        if (!line.empty() && !fits(line + Text(text.substr(0, length)))) {
            lines.emplace_back(WithoutEndBlanks(line));
            line.clear();
        }
        // A word longer than the room is cut.
        while (length > 1 && !fits(text.substr(0, length))) --length;
        line += text.substr(0, length);
        text.remove_prefix(length);
    }
    lines.emplace_back(WithoutEndBlanks(line));
    return lines;
}

std::vector<PlacedCell> PlaceCells(const std::vector<SheetRow>& rows) {
    std::vector<PlacedCell> placed;
    std::vector<std::size_t> taken;  // by column: the first row that it is free in
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::size_t column = 0;
        for (const SheetCell& cell : rows[row].cells) {
            while (column < taken.size() && taken[column] > row) ++column;
            placed.push_back({&cell, row, column});
            const std::size_t end = column + static_cast<std::size_t>(std::max(cell.columns, 1));
            if (taken.size() < end) taken.resize(end, 0);
            for (; column < end; ++column) {
                taken[column] = std::min(rows.size(), row + static_cast<std::size_t>(std::max(cell.rows, 1)));
            }
        }
    }
    return placed;
}

SheetLayout::SheetLayout(const Sheet& sheet, Lettering& lettering, double width, double room,
                         double first_room)
    : lettering_(lettering), headings_(PlaceCells(sheet.headings)) {
    ChooseColumns(sheet, width);
    MeasureHeadings(sheet);
    const double headings = std::accumulate(heading_heights_.begin(), heading_heights_.end(), 0.0);
    pages_.push_back(0);
    double left = first_room - headings;
    for (std::size_t i = 0; i < sheet.rows.size(); ++i) {
        std::size_t lines = 1;
        std::size_t column = 0;
        for (const SheetCell& cell : sheet.rows[i].cells) lines = std::max(lines, LineCount(cell, column++));
        heights_.push_back(std::min(HeightOf(lines), room - headings));
        if (heights_[i] > left) {
            pages_.push_back(i);
            left = room - headings;
        }
        left -= heights_[i];
    }
    pages_.push_back(sheet.rows.size());
}

void SheetLayout::ChooseColumns(const Sheet& sheet, double width) {
    struct Column {
        double least = 0;  // for letters of one point
        double most = 0;
    };
    std::vector<Column> columns;
    const auto measure = [&](const SheetCell& cell, std::size_t column) {
        if (columns.size() <= column) columns.resize(column + 1);
        if (cell.columns != 1) return;
        columns[column].least = std::max(columns[column].least, WidestPiece(cell, lettering_));
        columns[column].most = std::max(columns[column].most, lettering_.Width(cell.text, cell.bold));
    };
    for (const PlacedCell& placed : headings_) measure(*placed.cell, placed.column);
    for (const SheetRow& row : sheet.rows) {
        std::size_t column = 0;
        for (const SheetCell& cell : row.cells) measure(cell, column++);
    }
    const double padding = 2 * kSidePadding * static_cast<double>(columns.size());
    double least = 0;
    for (const Column& column : columns) least += column.least;
    const double room = std::max(width - padding, 0.0);
    points_ = kLargest;
    while (points_ > kSmallest && least * points_ > room) points_ -= kStep;
    if (least * points_ > room) points_ = room / least;

    double wish = 0;
    for (const Column& column : columns) wish += column.most - column.least;
    const double over = room - least * points_;
    edges_.push_back(0);
    for (const Column& column : columns) {
        const double part = wish > 0 ? (column.most - column.least) / wish : 0;
        edges_.push_back(edges_.back() + 2 * kSidePadding + column.least * points_ + over * part);
    }
}

void SheetLayout::MeasureHeadings(const Sheet& sheet) {
    heading_heights_.assign(sheet.headings.size(), HeightOf(1));
    for (const bool spanning : {false, true}) {
        for (const PlacedCell& placed : headings_) {
            const auto span = static_cast<std::size_t>(std::max(placed.cell->rows, 1));
            if ((span > 1) != spanning) continue;
            const auto first = heading_heights_.begin() + static_cast<std::ptrdiff_t>(placed.row);
            const std::size_t rows = std::min(span, heading_heights_.size() - placed.row);
            const auto last = first + static_cast<std::ptrdiff_t>(rows);
            const double there = std::accumulate(first, last, 0.0);
            const double needed = HeightOf(LineCount(*placed.cell, placed.column));
            if (needed > there) *(last - 1) += needed - there;
        }
    }
}

double SheetLayout::HeightOf(std::size_t lines) const {
    return static_cast<double>(lines) * lettering_.line_height() * points_ + 2 * kPadding;
}

std::vector<Text> SheetLayout::Lines(const SheetCell& cell, std::size_t column) const {
    if (IsOnePiece(cell)) return {cell.text};
    const std::size_t end = std::min(column + static_cast<std::size_t>(std::max(cell.columns, 1)), columns());
    const double room = (edges_[end] - edges_[column] - 2 * kSidePadding) / points_;
    return LinesOf(cell.text, cell.bold, room, lettering_);
}

}  // namespace tav
