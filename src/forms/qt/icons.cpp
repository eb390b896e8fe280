#include "forms/qt/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyle>
#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace tav {
namespace {

// A stretch of time as a piece of the year's disc; All is several discs. Drawn at every size and in the
// colours of the moment, so a change of the desktop's theme needs nothing.
class PeriodEngine : public QIconEngine {
 public:
    PeriodEngine(int months, bool several) : months_(months), several_(several) {}

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
        const auto disc = [&](const QRectF& place) {
            painter->setBrush(rest);
            painter->drawEllipse(place);
            painter->setBrush(fill);
            // Clockwise from the top, in sixteenths of a degree.
            if (months_ < 12) painter->drawPie(place, 90 * 16, -months_ * 30 * 16);
            if (months_ == 12) painter->drawEllipse(place);
        };
        const QRectF inner = box.adjusted(edge, edge, -edge, -edge);
        if (several_) {
            const double small = inner.width() * 0.7;
            disc({inner.right() - small, inner.top(), small, small});
            disc({inner.left(), inner.bottom() - small, small, small});
        } else {
            disc(inner);
        }
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap out(size);
        out.fill(Qt::transparent);
        QPainter painter(&out);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return out;
    }
    QIconEngine* clone() const override { return new PeriodEngine(*this); }

 private:
    int months_;
    bool several_;
};

struct Drawn {
    Picture picture;
    int months;
    bool several;
};
constexpr std::array<Drawn, 5> kDrawn = {{
    {Picture::All, 12, true},
    {Picture::Year, 12, false},
    {Picture::Part, 6, false},
    {Picture::Quarter, 3, false},
    {Picture::Month, 1, false},
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
    // Shared by the thousands of nodes of a tree.
    static std::map<Picture, QIcon>& icons = *new std::map<Picture, QIcon>;
    for (const Drawn& drawn : kDrawn) {
        if (drawn.picture != picture) continue;
        QIcon& icon = icons[picture];
        if (icon.isNull()) icon = QIcon(new PeriodEngine(drawn.months, drawn.several));
        return icon;
    }
    return {};
}

}  // namespace tav
