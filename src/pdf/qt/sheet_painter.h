// Draws sheets onto the pages of a PDF, whose device units are those of Lettering.
#pragma once

#include <QPainter>
#include <functional>

#include "pdf/qt/lettering.h"
#include "pdf/sheet.h"

namespace tav {

class SheetPainter {
 public:
    // Contents go into an area of this size at the painter's origin; `new_page` begins the next page.
    SheetPainter(QPainter& painter, const QSizeF& area, std::function<void()> new_page)
        : painter_(painter), area_(area), new_page_(std::move(new_page)) {}

    void Draw(const Sheet& sheet);

 private:
    // Each returns the bottom of what it has drawn from `top` on, or would draw.
    double DrawTitle(const Sheet& sheet, double top, bool draw);
    double DrawHeading(const Sheet& sheet, double top, bool draw);
    void DrawFooter(const Sheet& sheet, std::size_t page, std::size_t pages);
    void DrawLetters(double x, double baseline, const Text& text, double points, bool bold);
    void DrawLink(double x, double baseline, const Text& text, double points, bool bold, int sheet);

    QPainter& painter_;
    QSizeF area_;
    std::function<void()> new_page_;
    Lettering lettering_;

    friend class TablePainter;
};

}  // namespace tav
