#include "reports/statement_picture.h"

#include <algorithm>
#include <cmath>

#include "reports/summary_choice.h"

namespace tav {
namespace {

double AmountOf(const Recordset& row, TextView field) {
    const double* amount = std::get_if<double>(&row.Field(field));
    return amount == nullptr ? 0 : *amount;
}

int MonthNumber(double serial) {
    const CivilDate date = CivilFromDate(Date{serial});
    return date.year * 12 + date.month - 1;
}

}  // namespace

void StatementPicture::TakeOpening(const Recordset& balance) {
    if (picture_ != nullptr) picture_->opening = AmountOf(balance, u"m9");
}

void StatementPicture::TakeOperation(const Recordset& operation) {
    const Value& date = operation.Field(u"p1");
    if (picture_ == nullptr || !DaysOf(date, date)) return;
    const double day = std::floor(std::get<Date>(date).serial);
    if (!IsNull(operation.Field(u"m9"))) picture_->days.push_back({day, AmountOf(operation, u"m9")});
    operations_.push_back({day, AmountOf(operation, u"m4"), AmountOf(operation, u"m8")});
}

void StatementPicture::Finish(const Value& begin, const Value& end) {
    if (picture_ == nullptr) return;
    const auto period = DaysOf(begin, end);
    // Further away is a mistake of the document, and would be months without number.
    constexpr double kAround = 366 * 2;
    constexpr double kLongest = 366 * 20;
    if (!period || period->end - period->begin > kLongest) return;
    const auto far = [&](const auto& each) {
        return each.day < period->begin - kAround || each.day > period->end + kAround;
    };
    std::erase_if(operations_, far);
    std::erase_if(picture_->days, far);
    std::stable_sort(picture_->days.begin(), picture_->days.end(),
                     [](const auto& a, const auto& b) { return a.day < b.day; });
    picture_->begin = period->begin;
    picture_->end = period->end;
    for (const Operation& operation : operations_) {
        picture_->begin = std::min(picture_->begin, operation.day);
        picture_->end = std::max(picture_->end, operation.day);
    }
    const int first = MonthNumber(picture_->begin);
    for (int month = first; month <= MonthNumber(picture_->end); ++month) {
        picture_->months.push_back({month / 12, month % 12 + 1, 0, 0});
    }
    for (const Operation& operation : operations_) {
        auto& month = picture_->months[static_cast<std::size_t>(MonthNumber(operation.day) - first)];
        month.charged += operation.charged;
        month.paid += operation.paid;
    }
}

}  // namespace tav
