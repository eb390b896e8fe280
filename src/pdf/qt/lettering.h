// The letters of a PDF: one family in two weights, and how wide texts are in it.
//
// Lengths are device units, of which a point has kPoint; widths are for letters of one point.
#pragma once

#include <QFont>
#include <QString>
#include <array>
#include <unordered_map>

#include "common/text.h"

namespace tav {

inline constexpr double kPoint = 10;

class Lettering {
 public:
    Lettering();
    QFont Font(double points, bool bold) const;
    // The sum of the letters' own widths: nothing is drawn closer together or joined.
    double Width(TextView text, bool bold);
    double ascent() const { return ascent_; }
    double line_height() const { return line_height_; }

 private:
    std::array<QFont, 2> fonts_;  // plain, bold; of kReference points
    std::array<std::unordered_map<char16_t, double>, 2> widths_;
    double ascent_ = 0;
    double line_height_ = 0;
};

inline QString Shown(TextView text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace tav
