#include "forms/qt/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>
#include <QStyle>
#include <algorithm>
#include <array>
#include <map>
#include <span>

namespace tav {
namespace {

struct Colours {
    QColor line;
    QColor fill;
    QColor rest;
};
using Draw = void (*)(QPainter&, const QRectF&, const Colours&);

// A stretch of time as a piece of the year's disc, clockwise from the top.
void DrawDisc(QPainter& painter, const QRectF& box, const Colours& colours, int months) {
    painter.setBrush(colours.rest);
    painter.drawEllipse(box);
    painter.setBrush(colours.fill);
    constexpr int kDegree = 16;  // Qt counts in sixteenths
    if (months < 12) painter.drawPie(box, 90 * kDegree, -months * 30 * kDegree);
    if (months == 12) painter.drawEllipse(box);
}

template <int kMonths>
void DrawPeriod(QPainter& painter, const QRectF& box, const Colours& colours) {
    DrawDisc(painter, box, colours, kMonths);
}

void DrawSeveralYears(QPainter& painter, const QRectF& box, const Colours& colours) {
    const double small = box.width() * 0.7;
    DrawDisc(painter, {box.right() - small, box.top(), small, small}, colours, 12);
    DrawDisc(painter, {box.left(), box.bottom() - small, small, small}, colours, 12);
}

// What became of a document: a disc with a sign in it, told apart by its sign as well as by its colour.
void DrawSign(QPainter& painter, const QRectF& box, const QColor& colour, std::span<const QPointF> sign) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(box);
    painter.setPen(QPen(Qt::white, box.width() / 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    QPolygonF line;
    for (const QPointF& point : sign) {
        line << QPointF(box.left() + box.width() * point.x(), box.top() + box.height() * point.y());
    }
    painter.drawPolyline(line);
}

void DrawWaiting(QPainter& painter, const QRectF& box, const Colours& colours) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colours.line, box.width() / 9));
    const double inside = box.width() / 9;
    painter.drawEllipse(box.adjusted(inside, inside, -inside, -inside));
}

void DrawDone(QPainter& painter, const QRectF& box, const Colours&) {
    constexpr std::array<QPointF, 3> kTick = {{{0.27, 0.53}, {0.44, 0.7}, {0.74, 0.34}}};
    DrawSign(painter, box, QColor(0x2e, 0x8b, 0x57), kTick);
}

void DrawPassed(QPainter& painter, const QRectF& box, const Colours&) {
    constexpr std::array<QPointF, 2> kDash = {{{0.28, 0.5}, {0.72, 0.5}}};
    DrawSign(painter, box, QColor(0x80, 0x86, 0x8b), kDash);
}

void DrawAttention(QPainter& painter, const QRectF& box, const Colours&) {
    constexpr std::array<QPointF, 2> kStroke = {{{0.5, 0.22}, {0.5, 0.56}}};
    DrawSign(painter, box, QColor(0xd9, 0x6c, 0x06), kStroke);
    painter.drawPoint(QPointF(box.center().x(), box.top() + box.height() * 0.78));
}

// Draws at every size and in the colours of the moment, so a change of the desktop's theme needs nothing.
class PictureEngine : public QIconEngine {
 public:
    explicit PictureEngine(Draw draw) : draw_(draw) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const bool selected = mode == QIcon::Selected;
        const QColor line = palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
        const QColor fill = selected ? line : palette.color(group, QPalette::Highlight);
        const QColor rest = palette.color(group, selected ? QPalette::Highlight : QPalette::Base);
        const double side = std::min(rect.width(), rect.height());
        const QRectF box(rect.center().x() + 0.5 - side / 2, rect.center().y() + 0.5 - side / 2, side, side);
        const double edge = side / 12;

        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(line, edge));
        draw_(*painter, box.adjusted(edge, edge, -edge, -edge), {line, fill, rest});
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap out(size);
        out.fill(Qt::transparent);
        QPainter painter(&out);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return out;
    }
    QIconEngine* clone() const override { return new PictureEngine(*this); }

 private:
    Draw draw_;
};

constexpr std::array<std::pair<Picture, Draw>, 9> kDrawn = {{
    {Picture::All, DrawSeveralYears},
    {Picture::Year, DrawPeriod<12>},
    {Picture::Part, DrawPeriod<6>},
    {Picture::Quarter, DrawPeriod<3>},
    {Picture::Month, DrawPeriod<1>},
    {Picture::Waiting, DrawWaiting},
    {Picture::Done, DrawDone},
    {Picture::Passed, DrawPassed},
    {Picture::Attention, DrawAttention},
}};

constexpr std::array<std::pair<Picture, QStyle::StandardPixmap>, 3> kStandard = {{
    {Picture::Refresh, QStyle::SP_BrowserReload},
    {Picture::Erase, QStyle::SP_TrashIcon},
    {Picture::Warning, QStyle::SP_MessageBoxWarning},
}};

}  // namespace

QIcon PictureIcon(Picture picture, const QWidget& widget) {
    for (const auto& [known, standard] : kStandard) {
        if (known == picture) return widget.style()->standardIcon(standard, nullptr, &widget);
    }
    // Shared by the thousands of rows of a list.
    static std::map<Picture, QIcon>& icons = *new std::map<Picture, QIcon>;
    for (const auto& [known, draw] : kDrawn) {
        if (known != picture) continue;
        QIcon& icon = icons[picture];
        if (icon.isNull()) icon = QIcon(new PictureEngine(draw));
        return icon;
    }
    return {};
}

}  // namespace tav
