#include "samples/ledger.h"

#include <iterator>
#include <numeric>

#include "samples/form.h"
#include "samples/model.h"

namespace tav::samples {
namespace {

struct OperationKind {
    const char16_t* text;
    const char16_t* document;
    const char16_t* second_line;
    int payment;  // index of kPaymentKinds
    bool charge;
};

constexpr OperationKind kOperations[] = {
    {u"Начислен налог по декларации", u"Декларация", u"первичная", 0, true},
    {u"Уплачен налог", u"Платежное поручение", u"клиент-банк", 0, false},
    {u"Начислены пени за просрочку платежа", u"Расчет пеней", u"автомат", 1, true},
    {u"Уплачены пени", u"Платежное поручение", u"клиент-банк", 1, false},
    {u"Начислен налог — аванс", u"Расчет аванса", u"квартал", 0, true},
    {u"Уплачен налог", u"Платежное поручение", u"клиент-банк", 0, false},
    {u"Начислен штраф по решению, форма № 7", u"Решение", u"проверка", 2, true},
    {u"Уплачен штраф", u"Платежное поручение", u"клиент-банк", 2, false},
    {u"Уменьшен налог по уточнённой декларации", u"Декларация", u"уточнённая", 0, false},
    {u"Начислен налог по декларации", u"Декларация", u"уточнённая", 0, true},
};

}  // namespace

Ledger::Ledger(const StatementOptions& options) : options_(options), random_(options.seed) {
    if (options.all_zero) return;
    sums_.opening = {random_.Balance(), -random_.Below(50'000), -100LL * random_.Below(2)};
    balance_ = sums_.opening;
}

std::vector<Line> Ledger::Lines() {
    const int begin = DayNumber(options_.period.begin);
    const long long days = DayNumber(options_.period.end) - begin + 1;
    std::vector<Line> lines;
    lines.reserve(static_cast<std::size_t>(options_.rows) + 6);
    AddBalances(lines, options_.period.begin);
    int year = options_.period.begin.year;
    for (int i = 0; i < options_.rows; ++i) {
        const int day = begin + static_cast<int>(days * i / options_.rows);
        const CivilDate date = DayOf(day);
        if (date.year != year) AddBalances(lines, {date.year, 1, 1});
        year = date.year;
        lines.push_back(Operation(i, day));
    }
    AddBalances(lines, options_.period.end);
    sums_.closing = balance_;
    return lines;
}

long long Ledger::Total() const {
    return std::accumulate(balance_.begin(), balance_.end(), 0LL);
}

void Ledger::AddBalances(std::vector<Line>& lines, const CivilDate& date) const {
    for (std::size_t kind = 0; kind < balance_.size(); ++kind) {
        lines.push_back({{3, u"Сальдо на " + DateText(date)},
                         {9, kPaymentKinds[kind]},
                         {13, AmountText(balance_[kind])},
                         {14, AmountText(Total())}});
    }
}

long long Ledger::OperationAmount(bool charge, bool tax, long long balance) {
    if (options_.all_zero) return 0;
    const bool settles = !charge && balance < 0 && random_.Below(3) > 0;
    if (settles) return -balance;
    return tax ? random_.Amount() : 100 + random_.Below(300'000);
}

Line Ledger::Operation(int number, int day) {
    const OperationKind& kind = kOperations[static_cast<std::size_t>(number) % std::size(kOperations)];
    const auto payment = static_cast<std::size_t>(kind.payment);
    const long long amount = OperationAmount(kind.charge, payment == 0, balance_[payment]);
    (kind.charge ? sums_.charged : sums_.paid)[payment] += amount;
    balance_[payment] += kind.charge ? -amount : amount;

    const int document = 100 + number + random_.Below(40);
    const CivilDate date = DayOf(day);
    Line line{{1, DateText(date)},
              {2, DateText(DayOf(day + random_.Below(10)))},
              {3, kind.text},
              {4, kind.document},
              {5, u"КВ." + Digits((date.month + 2) / 3, 2) + u"." + Digits(date.year, 4)},
              {6, Digits(document)},
              {7, DateText(DayOf(day - random_.Below(6)))},
              {8, DateText(date)},
              {9, kPaymentKinds[payment]},
              {10, AmountText(kind.charge ? amount : 0)},
              {11, AmountText(kind.charge ? 0 : amount)},
              {12, AmountText(0)},
              {13, AmountText(balance_[payment])},
              {14, AmountText(Total())}};
    const int every = options_.second_line_every;
    if (every > 0 && number % every == every - 1) line.push_back({4, kind.second_line});
    return line;
}

}  // namespace tav::samples
