#include "pdf/qt/lettering.h"

#include <QFontMetricsF>
#include <QStringList>

namespace tav {
namespace {

// Widths are measured on letters so large that they are not rounded.
constexpr int kReference = 1000;

// The narrowest that is there.
constexpr char16_t kFamilies[] = u"Liberation Sans Narrow|DejaVu Sans Condensed|Liberation Sans|DejaVu Sans";

}  // namespace

Lettering::Lettering() {
    for (const bool bold : {false, true}) {
        QFont font;
        font.setFamilies(QString::fromUtf16(kFamilies).split(u'|'));
        font.setStyleHint(QFont::SansSerif);
        font.setHintingPreference(QFont::PreferNoHinting);
        font.setKerning(false);
        font.setBold(bold);
        font.setPixelSize(kReference);
        fonts_[bold] = font;
    }
    const QFontMetricsF metrics(fonts_[0]);
    ascent_ = metrics.ascent() * kPoint / kReference;
    line_height_ = (metrics.ascent() + metrics.descent()) * kPoint / kReference;
}

QFont Lettering::Font(double points, bool bold) const {
    QFont font = fonts_[bold];
    font.setPixelSize(qMax(1, qRound(points * kPoint)));
    return font;
}

double Lettering::Width(TextView text, bool bold) {
    double width = 0;
    for (const char16_t c : text) {
        const auto [known, is_new] = widths_[bold].try_emplace(c);
        if (is_new) {
            known->second = QFontMetricsF(fonts_[bold]).horizontalAdvance(QChar(c)) * kPoint / kReference;
        }
        width += known->second;
    }
    return width;
}

}  // namespace tav
