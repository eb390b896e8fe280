#include "pdf/qt/sheet_painter.h"

#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "pdf/qt/charts.h"
#include "pdf/qt/page_links.h"
#include "pdf/qt/sheet_layout.h"

namespace tav {
namespace {

constexpr double kTitlePoints = 13;
constexpr double kHeadingPoints = 9;
constexpr double kFooterPoints = 7;
constexpr double kFooterHeight = 14 * kPoint;
constexpr double kGap = 6 * kPoint;
constexpr double kLabelPart = 0.17;  // of the width, for the labels of the heading

constexpr double kThinRule = 0.5 * kPoint;
constexpr double kPixel = 72.0 / 96 * kPoint;
constexpr QRgb kLinkColour = 0xFF0645AD;

}  // namespace

// One table on its pages.
class TablePainter {
 public:
    TablePainter(SheetPainter& painter, const Sheet& sheet, const SheetLayout& layout)
        : painter_(painter), sheet_(sheet), layout_(layout) {}

    double DrawHeadings(double top) {
        const std::vector<double>& heights = layout_.heading_heights();
        for (const PlacedCell& placed : layout_.headings()) {
            double y = top;
            for (std::size_t row = 0; row < placed.row; ++row) y += heights[row];
            double height = 0;
            const std::size_t end = placed.row + static_cast<std::size_t>(std::max(placed.cell->rows, 1));
            for (std::size_t row = placed.row; row < std::min(end, heights.size()); ++row)
                height += heights[row];
            DrawCell(*placed.cell, placed.column, y, height, kNoSheet);
        }
        for (const double height : heights) top += height;
        return top;
    }

    double DrawRow(std::size_t row, double top) {
        const double height = layout_.RowHeight(row);
        std::size_t column = 0;
        for (const SheetCell& cell : sheet_.rows[row].cells) {
            DrawCell(cell, column, top, height, column == 0 ? sheet_.rows[row].link : kNoSheet);
            ++column;
        }
        return top + height;
    }

 private:
    void DrawCell(const SheetCell& cell, std::size_t column, double top, double height, int link) {
        const std::size_t end =
            std::min(column + static_cast<std::size_t>(std::max(cell.columns, 1)), layout_.columns());
        const QRectF box(layout_.Edge(column), top, layout_.Edge(end) - layout_.Edge(column), height);
        DrawRules(cell, box);
        const std::vector<Text> lines = layout_.Lines(cell, column);
        const double points = layout_.points();
        const double line_height = painter_.lettering_.line_height() * points;
        double baseline = box.center().y() - line_height * static_cast<double>(lines.size()) / 2 +
                          painter_.lettering_.ascent() * points;
        for (const Text& line : lines) {
            const double width = painter_.lettering_.Width(line, cell.bold) * points;
            double x = box.left() + SheetLayout::kSidePadding;
            if (cell.alignment == CellAlignment::Right) x = box.right() - SheetLayout::kSidePadding - width;
            if (cell.alignment == CellAlignment::Centre) x = box.center().x() - width / 2;
            if (link == kNoSheet) {
                painter_.DrawLetters(x, baseline, line, points, cell.bold);
            } else {
                painter_.DrawLink(x, baseline, line, points, cell.bold, link);
            }
            baseline += line_height;
        }
    }

    // Neighbours draw the rule between them twice, in one place; the thicker one is seen.
    void DrawRules(const SheetCell& cell, const QRectF& box) {
        const auto line = [&](const QPointF& from, const QPointF& to, int pixels) {
            painter_.painter_.setPen(
                QPen(Qt::black, std::max(kThinRule, pixels * kPixel), Qt::SolidLine, Qt::SquareCap));
            painter_.painter_.drawLine(from, to);
        };
        line(box.topLeft(), box.topRight(), cell.top_rule);
        line(box.topLeft(), box.bottomLeft(), cell.left_rule);
        line(box.bottomLeft(), box.bottomRight(), 0);
        line(box.topRight(), box.bottomRight(), 0);
    }

    SheetPainter& painter_;
    const Sheet& sheet_;
    const SheetLayout& layout_;
};

void SheetPainter::Draw(const Sheet& sheet) {
    const double room = area_.height() - kFooterHeight;
    double top = DrawHeading(sheet, DrawTitle(sheet, 0, false), false) + kGap;
    const double picture = PictureHeight(sheet);
    const double table = picture > 0 ? top + picture + kGap : top;
    const SheetLayout layout(sheet, lettering_, area_.width(), room, room - table);
    TablePainter painter(*this, sheet, layout);

    DrawHeading(sheet, DrawTitle(sheet, 0, true), true);
    if (picture > 0) DrawPicture(painter_, {0, top, area_.width(), picture}, sheet, lettering_);
    top = table;
    const std::vector<std::size_t>& pages = layout.pages();
    for (std::size_t page = 0; page + 1 < pages.size(); ++page) {
        if (page > 0) {
            new_page_();
            top = 0;
        }
        top = painter.DrawHeadings(top);
        for (std::size_t row = pages[page]; row < pages[page + 1]; ++row) top = painter.DrawRow(row, top);
        DrawFooter(sheet, page + 1, pages.size() - 1);
    }
}

double SheetPainter::DrawTitle(const Sheet& sheet, double top, bool draw) {
    const double width = lettering_.Width(sheet.title, true) * kTitlePoints;
    const double points = kTitlePoints * std::min(1.0, area_.width() / std::max(width, 1.0));
    if (draw) {
        const double x = (area_.width() - width * points / kTitlePoints) / 2;
        DrawLetters(x, top + lettering_.ascent() * points, sheet.title, points, true);
    }
    return top + lettering_.line_height() * points + kGap;
}

double SheetPainter::DrawHeading(const Sheet& sheet, double top, bool draw) {
    const double line_height = lettering_.line_height() * kHeadingPoints;
    for (const SheetRow& row : sheet.heading) {
        double x = 0;
        const std::size_t count = std::max<std::size_t>(row.cells.size(), 1);
        std::size_t most = 1;
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            // Labels and values by turns; each pair has its part of the width.
            const bool value = i % 2 != 0;
            const double width =
                area_.width() * (value ? 2.0 / static_cast<double>(count) - kLabelPart : kLabelPart);
            const std::vector<Text> lines =
                LinesOf(row.cells[i].text, value, (width - kGap) / kHeadingPoints, lettering_);
            most = std::max(most, lines.size());
            double baseline = top + lettering_.ascent() * kHeadingPoints;
            for (const Text& line : lines) {
                if (draw) DrawLetters(x, baseline, line, kHeadingPoints, value);
                baseline += line_height;
            }
            x += width;
        }
        top += line_height * static_cast<double>(most);
    }
    return top;
}

void SheetPainter::DrawFooter(const Sheet& sheet, std::size_t page, std::size_t pages) {
    const double baseline = area_.height() - 2 * kPoint;
    const Text number = Text(u"Страница ") + Digits(static_cast<long long>(page)) + u" из " +
                        Digits(static_cast<long long>(pages));
    const double width = lettering_.Width(number, false) * kFooterPoints;
    DrawLetters(area_.width() - width, baseline, number, kFooterPoints, false);
    if (sheet.leads_home) DrawLink(0, baseline, u"К сводной справке", kFooterPoints, false, kNoSheet);
}

void SheetPainter::DrawLetters(double x, double baseline, const Text& text, double points, bool bold) {
    if (text.empty()) return;
    painter_.setPen(Qt::black);
    painter_.setFont(lettering_.Font(points, bold));
    painter_.drawText(QPointF(x, baseline), Shown(text));
}

void SheetPainter::DrawLink(double x, double baseline, const Text& text, double points, bool bold,
                            int sheet) {
    const QFont font = lettering_.Font(points, bold);
    QTextLayout layout(Shown(text), font);
    QTextCharFormat format;
    format.setAnchor(true);
    format.setAnchorHref(QString::fromStdString(SheetAddress(sheet)));
    format.setForeground(QColor::fromRgba(kLinkColour));
    format.setFontUnderline(true);
    layout.setFormats({{0, static_cast<int>(text.size()), format}});
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(area_.width());
    layout.endLayout();
    layout.draw(&painter_, QPointF(x, baseline - line.ascent()));
}

}  // namespace tav
