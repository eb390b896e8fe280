#include "ui/is_date_in.h"

#include "common/concat.h"
#include "common/guard.h"
#include "reports/summary_choice.h"

namespace tav {
namespace {

struct Counted {
    long long count = 0;
    Text list;

    void Add(std::size_t number) {
        ++count;
        list += Digits(static_cast<long long>(number));
        list += u',';
    }
};

}  // namespace

void IsDateIn(std::int32_t period_begin, std::int32_t period_end, std::span<const std::int32_t> begin_dates,
              std::span<const std::int32_t> end_dates, Text& result) {
    Guarded(u"Ошибка в функции IsDateIn", [&] {
        result.clear();
        const DayRange period = {period_begin, period_end};
        Counted whole;
        Counted overlapping;
        for (std::size_t i = 0; i < begin_dates.size(); ++i) {
            if (i >= end_dates.size()) throw Failure(RunTimeError::SubscriptOutOfRange);
            const DayRange document = {begin_dates[i], end_dates[i]};
            if (IsWholeIn(document, period)) whole.Add(i + 1);
            if (Overlap(document, period)) overlapping.Add(i + 1);
        }
        if (whole.count == 0 && overlapping.count == 0) return;
        result += Concat(u"(", Digits(whole.count), u"/", Digits(overlapping.count), u")|", whole.list, u"|",
                         overlapping.list);
    });
}

}  // namespace tav
