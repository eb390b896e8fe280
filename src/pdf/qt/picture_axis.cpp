#include "pdf/qt/picture_axis.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tav {
namespace {

struct Unit {
    double size;
    const char16_t* name;
};
constexpr std::array<Unit, 5> kUnits = {
    {{1e12, u"трлн руб."}, {1e9, u"млрд руб."}, {1e6, u"млн руб."}, {1e3, u"тыс. руб."}, {1, u"руб."}}};

// 1, 2 or 5 times a power of ten, at least `step`.
double RoundStep(double step) {
    const double power = std::pow(10, std::floor(std::log10(step)));
    for (const double times : {1.0, 2.0, 5.0}) {
        if (times * power >= step * 0.999) return times * power;
    }
    return 10 * power;
}

}  // namespace

AmountAxis::AmountAxis(double least, double most) {
    constexpr double kMarks = 4;
    least = std::min(least, 0.0);
    most = std::max(most, 0.0);
    if (!(most - least >= 1) || !std::isfinite(most - least)) most = least + 1;
    const double step = RoundStep((most - least) / kMarks);
    const double first = std::floor(least / step + 1e-9);
    const double last = std::ceil(most / step - 1e-9);
    for (double mark = first; mark <= last; ++mark) marks_.push_back(mark * step);
    least_ = first * step;
    most_ = last * step;
    const double largest = std::max(-least_, most_);
    const auto unit = std::find_if(kUnits.begin(), kUnits.end() - 1,
                                   [&](const Unit& each) { return largest >= each.size; });
    unit_size_ = unit->size;
    unit_ = QString::fromUtf16(unit->name);
    decimals_ = static_cast<int>(std::clamp(-std::floor(std::log10(step / unit_size_) + 1e-9), 0.0, 3.0));
}

QString AmountAxis::Shown(double mark) const {
    if (mark == 0) return QStringLiteral("0");
    return QString::number(mark / unit_size_, 'f', decimals_).replace(u'.', u',');
}

}  // namespace tav
