#include "pdf/qt/charts.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "common/date.h"
#include "pdf/qt/picture_axis.h"

namespace tav {
namespace {

constexpr double kLetters = 7;  // points
constexpr double kLine = 10 * kPoint;
constexpr double kBalanceHeight = 135 * kPoint;
constexpr std::size_t kMostBars = 12;

// Told apart by everybody, and in grey too.
constexpr QRgb kDebt = 0xFFD55E00;
constexpr QRgb kOverpayment = 0xFF0072B2;
constexpr QRgb kCharged = 0xFFE69F00;
constexpr QRgb kPaid = 0xFF56B4E9;
constexpr QRgb kGrid = 0xFFD0D0D0;

class Drawing {
 public:
    Drawing(QPainter& painter, Lettering& lettering) : painter_(painter), lettering_(lettering) {
        painter_.setFont(lettering_.Font(kLetters, false));
        painter_.setPen(Qt::black);
    }

    double Width(const QString& text) const {
        return lettering_.Width(TextView(reinterpret_cast<const char16_t*>(text.utf16()),
                                         static_cast<std::size_t>(text.size())),
                                false) *
               kLetters;
    }
    // `part`: where x lies in the text, 0 at its start, 1 at its end.
    void Label(double x, double baseline, const QString& text, double part = 0) {
        painter_.drawText(QPointF(x - part * Width(text), baseline), text);
    }
    void Box(const QRectF& box, QRgb colour) { painter_.fillRect(box, QColor::fromRgba(colour)); }
    void Line(double x1, double y1, double x2, double y2, QRgb colour, double width) {
        painter_.setPen(QPen(QColor::fromRgba(colour), width, Qt::SolidLine, Qt::FlatCap));
        painter_.drawLine(QPointF(x1, y1), QPointF(x2, y2));
        painter_.setPen(Qt::black);
    }
    // A square of the colour and what it stands for; returns where the next one begins.
    double Key(double x, double baseline, QRgb colour, const QString& text) {
        constexpr double kSide = 6 * kPoint;
        Box({x, baseline - kSide, kSide, kSide}, colour);
        Label(x + kSide * 1.4, baseline, text);
        return x + kSide * 3 + Width(text);
    }

 private:
    QPainter& painter_;
    Lettering& lettering_;
};

// An area with an axis of amounts on its left and marks across it.
class Plot {
 public:
    Plot(Drawing& drawing, const QRectF& area, const AmountAxis& axis) : axis_(axis), inner_(area) {
        double labels = 0;
        for (const double mark : axis.marks()) labels = std::max(labels, drawing.Width(axis.Shown(mark)));
        inner_.setLeft(area.left() + labels + 3 * kPoint);
        for (const double mark : axis.marks()) {
            drawing.Line(inner_.left(), Y(mark), inner_.right(), Y(mark), kGrid, 0.4 * kPoint);
            drawing.Label(inner_.left() - 2 * kPoint, Y(mark) + 2.5 * kPoint, axis.Shown(mark), 1);
        }
    }
    const QRectF& inner() const { return inner_; }
    double Y(double amount) const {
        return inner_.bottom() - (amount - axis_.least()) / (axis_.most() - axis_.least()) * inner_.height();
    }
    void DrawZero(Drawing& drawing) const {
        drawing.Line(inner_.left(), Y(0), inner_.right(), Y(0), 0xFF000000, 0.8 * kPoint);
    }

 private:
    const AmountAxis& axis_;
    QRectF inner_;
};

QString MonthName(int year, int month) {
    return QStringLiteral("%1.%2").arg(month, 2, 10, QChar(u'0')).arg(year);
}

// Every how manyeth of `count` labels of that width has room.
std::size_t EveryHowMany(std::size_t count, double width, double room) {
    const double fit = std::max(1.0, std::floor(room / (width * 1.3)));
    return static_cast<std::size_t>(std::ceil(static_cast<double>(count) / fit));
}

void DrawCurve(Drawing& drawing, const QRectF& area, const BalancePicture& picture) {
    double least = picture.opening;
    double most = picture.opening;
    for (const BalancePicture::Day& day : picture.days) {
        least = std::min(least, day.balance);
        most = std::max(most, day.balance);
    }
    const AmountAxis axis(least, most);
    const double top = area.top() + kLine * 0.8;
    drawing.Label(area.left(), top, QStringLiteral("Сальдо, ") + axis.unit());
    double x = area.left() + area.width() * 0.35;
    x = drawing.Key(x, top, kOverpayment, QStringLiteral("переплата"));
    drawing.Key(x, top, kDebt, QStringLiteral("недоимка"));
    const Plot plot(drawing, area.adjusted(0, kLine * 1.4, 0, -kLine), axis);
    const QRectF& inner = plot.inner();
    const double days = std::max(picture.end + 1 - picture.begin, 1.0);
    const auto at = [&](double day) {
        return inner.left() + std::clamp((day - picture.begin) / days, 0.0, 1.0) * inner.width();
    };
    double from = picture.begin;
    double balance = picture.opening;
    const auto draw_until = [&](double day) {
        const QRgb colour = balance < 0 ? kDebt : kOverpayment;
        const double height = plot.Y(balance) - plot.Y(0);
        drawing.Box(QRectF(at(from), plot.Y(0), at(day) - at(from), height).normalized(), colour);
        from = day;
    };
    for (const BalancePicture::Day& day : picture.days) {
        draw_until(day.day);
        balance = day.balance;
    }
    draw_until(picture.end + 1);
    plot.DrawZero(drawing);

    const auto shown = [](double serial) {
        const CivilDate date = CivilFromDate(Date{serial});
        return QStringLiteral("%1.").arg(date.day, 2, 10, QChar(u'0')) + MonthName(date.year, date.month);
    };
    const double baseline = area.bottom() - kPoint;
    drawing.Label(inner.left(), baseline, shown(picture.begin));
    drawing.Label(inner.right(), baseline, shown(picture.end), 1);
}

void DrawMonths(Drawing& drawing, const QRectF& area, const BalancePicture& picture) {
    double least = 0;
    double most = 0;
    for (const BalancePicture::Month& month : picture.months) {
        least = std::min({least, month.charged, month.paid});
        most = std::max({most, month.charged, month.paid});
    }
    const AmountAxis axis(least, most);
    const double top = area.top() + kLine * 0.8;
    drawing.Label(area.left(), top, QStringLiteral("По месяцам, ") + axis.unit());
    double x = area.left() + area.width() * 0.38;
    x = drawing.Key(x, top, kCharged, QStringLiteral("начислено"));
    drawing.Key(x, top, kPaid, QStringLiteral("уплачено"));
    const Plot plot(drawing, area.adjusted(0, kLine * 1.4, 0, -kLine), axis);
    const QRectF& inner = plot.inner();
    const std::size_t count = picture.months.size();
    const double step = inner.width() / static_cast<double>(std::max<std::size_t>(count, 1));
    const std::size_t every = EveryHowMany(count, drawing.Width(MonthName(2000, 1)), inner.width());
    for (std::size_t i = 0; i < count; ++i) {
        const BalancePicture::Month& month = picture.months[i];
        const double left = inner.left() + step * static_cast<double>(i);
        const auto bar = [&](double part, double amount, QRgb colour) {
            drawing.Box(
                QRectF(left + step * part, plot.Y(0), step * 0.38, plot.Y(amount) - plot.Y(0)).normalized(),
                colour);
        };
        bar(0.1, month.charged, kCharged);
        bar(0.52, month.paid, kPaid);
        if (i % every == 0) {
            const QString name = MonthName(month.year, month.month);
            const double half = drawing.Width(name) / 2;
            const double middle = std::clamp(left + step / 2, inner.left() + half,
                                             std::max(inner.right() - half, inner.left() + half));
            drawing.Label(middle, area.bottom() - kPoint, name, 0.5);
        }
    }
    plot.DrawZero(drawing);
}

std::vector<AmountsPicture::Bar> LargestFirst(std::vector<AmountsPicture::Bar> bars) {
    std::stable_sort(bars.begin(), bars.end(),
                     [](const AmountsPicture::Bar& a, const AmountsPicture::Bar& b) {
                         return std::fabs(a.amount) > std::fabs(b.amount);
                     });
    if (bars.size() <= kMostBars) return bars;
    AmountsPicture::Bar others;
    for (std::size_t i = kMostBars - 1; i < bars.size(); ++i) others.amount += bars[i].amount;
    others.name = Text(u"прочие: ") +
                  Digits(static_cast<long long>(bars.size()) - static_cast<long long>(kMostBars) + 1);
    bars.resize(kMostBars - 1);
    bars.push_back(std::move(others));
    return bars;
}

void DrawAmounts(QPainter& painter, Drawing& drawing, const QRectF& area, const AmountsPicture& picture) {
    const std::vector<AmountsPicture::Bar> bars = LargestFirst(picture.bars);
    double least = 0;
    double most = 0;
    for (const AmountsPicture::Bar& bar : bars) {
        least = std::min(least, bar.amount);
        most = std::max(most, bar.amount);
    }
    const AmountAxis axis(least, most);
    const double top = area.top() + kLine * 0.8;
    drawing.Label(area.left(), top, QStringLiteral("Сальдо на конец, ") + axis.unit());
    const QRectF plot(area.left() + area.width() * 0.42, area.top() + kLine * 1.2, area.width() * 0.56,
                      kLine * static_cast<double>(bars.size()));
    double x = drawing.Key(plot.left(), top, kDebt, QStringLiteral("недоимка"));
    drawing.Key(x, top, kOverpayment, QStringLiteral("переплата"));
    const auto at = [&](double amount) {
        return plot.left() + (amount - axis.least()) / (axis.most() - axis.least()) * plot.width();
    };
    for (const double mark : axis.marks()) {
        drawing.Line(at(mark), plot.top(), at(mark), plot.bottom(), kGrid, 0.4 * kPoint);
        drawing.Label(at(mark), plot.bottom() + kLine * 0.8, axis.Shown(mark), 0.5);
    }
    double y = plot.top();
    for (const AmountsPicture::Bar& bar : bars) {
        painter.save();
        painter.setClipRect(QRectF(area.left(), y, plot.left() - area.left() - 4 * kPoint, kLine));
        drawing.Label(area.left(), y + kLine * 0.75, Shown(bar.name));
        painter.restore();
        drawing.Box(QRectF(at(0), y + kLine * 0.15, at(bar.amount) - at(0), kLine * 0.7).normalized(),
                    bar.amount < 0 ? kDebt : kOverpayment);
        y += kLine;
    }
    drawing.Line(at(0), plot.top(), at(0), plot.bottom(), 0xFF000000, 0.8 * kPoint);
}

bool HasBalance(const Sheet& sheet) {
    return sheet.balance.end > sheet.balance.begin;
}

}  // namespace

double PictureHeight(const Sheet& sheet) {
    if (HasBalance(sheet)) return kBalanceHeight;
    const std::size_t bars = std::min(sheet.amounts.bars.size(), kMostBars);
    return bars == 0 ? 0 : kLine * (static_cast<double>(bars) + 2.4);
}

void DrawPicture(QPainter& painter, const QRectF& area, const Sheet& sheet, Lettering& lettering) {
    Drawing drawing(painter, lettering);
    if (HasBalance(sheet)) {
        const double gap = 16 * kPoint;
        QRectF left = area;
        left.setWidth(area.width() * 0.56);
        QRectF right = area;
        right.setLeft(left.right() + gap);
        DrawCurve(drawing, left, sheet.balance);
        DrawMonths(drawing, right, sheet.balance);
    } else {
        DrawAmounts(painter, drawing, area, sheet.amounts);
    }
}

}  // namespace tav
