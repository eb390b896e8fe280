#include "reports/act_amounts.h"

#include <cmath>
#include <limits>

#include "common/concat.h"
#include "common/failure.h"
#include "common/regional.h"
#include "db/literals.h"

namespace tav {
namespace {

// Which fields make an amount: the leading one, and those named by the stem and a digit from 2 to the last.
struct Composition {
    TextView leading;
    TextView stem;
    char16_t last_digit = u'1';
};

constexpr std::array<Composition, kActAmounts> kCompositions = {{
    {u"p11", u"p11", u'5'},  // opening debt: tax, penalties, fines, unpaid sums, interest
    {u"p121", u"p12", u'5'},
    {u"p211", u"p21", u'5'},
    {u"p221", u"p22", u'5'},
    {u"p231", u"p23", u'3'},
    {u"p24", u"p24", u'4'},
    {u"p251", u"p25", u'5'},
    {u"p26", u"", u'1'},
    {u"p27", u"", u'1'},
    {u"p281", u"p28", u'4'},
    {u"p291", u"p29", u'5'},
    {u"p31", u"p31", u'4'},  // closing debt; its interest stands in p32
    {u"p321", u"p32", u'5'},
}};
constexpr std::size_t kOpeningDebt = 0;
constexpr std::size_t kOpeningOverpayment = 1;
constexpr std::size_t kClosingDebt = 11;
constexpr std::size_t kClosingOverpayment = 12;

constexpr double kMoneyScale = 1e4;
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

Money MoneyOf(const Recordset& act, TextView field) {
    const Value& value = act.Field(field);
    if (IsNull(value)) return {};
    const double* number = std::get_if<double>(&value);
    const auto other = number == nullptr ? ParseNumber(isns(value)) : std::optional(*number);
    if (!other) throw Failure(RunTimeError::TypeMismatch, field);
    const double scaled = std::nearbyint(*other * kMoneyScale);
    // The largest whole number is no double: the next one above is the bound.
    if (!(std::fabs(scaled) < static_cast<double>(kLargest))) throw Failure(RunTimeError::Overflow, field);
    return {static_cast<std::int64_t>(scaled)};
}

void Add(Money& sum, Money amount, TextView field) {
    const std::int64_t a = sum.ten_thousandths;
    const std::int64_t b = amount.ten_thousandths;
    if (b > 0 ? a > kLargest - b : a < -kLargest - b) throw Failure(RunTimeError::Overflow, field);
    sum.ten_thousandths = a + b;
}

}  // namespace

ActAmounts ReadActAmounts(const Recordset& act) {
    ActAmounts amounts;
    for (std::size_t i = 0; i < kActAmounts; ++i) {
        const Composition& fields = kCompositions[i];
        amounts[i] = MoneyOf(act, fields.leading);
        for (char16_t digit = u'2'; digit <= fields.last_digit; ++digit) {
            const Text field = Text(fields.stem) + digit;
            Add(amounts[i], MoneyOf(act, field), field);
        }
    }
    Add(amounts[kClosingDebt], MoneyOf(act, u"p32"), u"p32");
    return amounts;
}

Text ActAmountText(Money amount) {
    constexpr TextView kBlank = u"&nbsp;";
    if (amount.ten_thousandths == 0) return Text(u"-").append(kBlank);
    if (amount.ten_thousandths > 0) return FormatAmount(amount).append(kBlank);
    return Concat(u"(", FormatAmount(Money{-amount.ten_thousandths}), u")", kBlank);
}

Text OpeningText(const ActAmounts& amounts) {
    const Money debt = amounts[kOpeningDebt];
    const Money overpayment = amounts[kOpeningOverpayment];
    return debt > overpayment ? Text(u"-").append(ActAmountText(debt)) : ActAmountText(overpayment);
}

Text ClosingText(const ActAmounts& amounts) {
    const Money debt = amounts[kClosingDebt];
    const Money overpayment = amounts[kClosingOverpayment];
    return overpayment > debt ? ActAmountText(overpayment) : Text(u"- ").append(ActAmountText(debt));
}

double ClosingBalance(const ActAmounts& amounts) {
    const auto roubles = [&](std::size_t amount) {
        return static_cast<double>(amounts[amount].ten_thousandths) / kMoneyScale;
    };
    return roubles(kClosingOverpayment) - roubles(kClosingDebt);
}

}  // namespace tav
