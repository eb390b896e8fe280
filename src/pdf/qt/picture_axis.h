// The scale of amounts along a picture: its ends, its marks, and their texts in roubles, thousands, millions.
#pragma once

#include <QString>
#include <vector>

namespace tav {

class AmountAxis {
 public:
    // 0 always lies on it.
    AmountAxis(double least, double most);

    double least() const { return least_; }
    double most() const { return most_; }
    const std::vector<double>& marks() const { return marks_; }
    // "руб.", "тыс. руб.", ...
    const QString& unit() const { return unit_; }
    QString Shown(double mark) const;

 private:
    double least_ = 0;
    double most_ = 0;
    double unit_size_ = 1;
    int decimals_ = 0;
    QString unit_;
    std::vector<double> marks_;
};

}  // namespace tav
