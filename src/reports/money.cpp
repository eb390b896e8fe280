#include "reports/money.h"

#include <array>
#include <cmath>

#include "common/failure.h"
#include "common/regional.h"
#include "db/literals.h"

namespace tav {
namespace {

constexpr TextView kNoAmount = u"-&nbsp;";
constexpr std::int64_t kColumns = 9;

// By column number, 0 unused. Whole ten-thousandths: of these a double holds every sum below 900 billion
// exactly, so that what cancels out is 0; above, amounts have no ten-thousandths in the database either.
using Columns = std::array<double, kColumns + 1>;

struct Accumulators {
    Columns turnover{};
    Columns opening{};
    Columns closing{};
    bool totals_done = false;
};

Accumulators& Sums() {
    static Accumulators sums;
    return sums;
}

constexpr double kTenThousandths = 1e4;

double TenThousandths(const Value& value) {
    if (const double* number = std::get_if<double>(&value)) return std::nearbyint(*number * kTenThousandths);
    const auto number = ParseNumber(isns(value));
    if (!number) throw Failure(RunTimeError::TypeMismatch, isns(value));
    return std::nearbyint(*number * kTenThousandths);
}

std::size_t ColumnNumber(TextView digits) {
    const auto number = ParseInteger(digits);
    if (!number) throw Failure(RunTimeError::TypeMismatch, digits);
    if (*number < 1 || *number > kColumns) throw Failure(RunTimeError::SubscriptOutOfRange, digits);
    return static_cast<std::size_t>(*number);
}

Text AmountText(double amount) {
    constexpr double kMoneyEnd = 9223372036854775808.0;  // beyond what a whole number holds
    const double size = std::fabs(amount);
    return Text(amount < 0 ? u"- " : u"")
        .append(size < kMoneyEnd ? FormatAmount(Money{static_cast<std::int64_t>(size)})
                                 : FormatAmount(size / kTenThousandths));
}

// The closing balances by kind (tax, penalty interest, fine), as a credit or as a debt, and their net.
void CloseColumns(Accumulators& sums) {
    for (std::size_t kind = 1; kind <= 3; ++kind) {
        const double balance =
            sums.turnover[kind + 4] + sums.opening[kind + 4] - sums.turnover[kind] - sums.opening[kind];
        sums.closing[balance > 0 ? kind + 4 : kind] = std::fabs(balance);
    }
    const Columns& c = sums.closing;
    sums.closing[9] = c[5] + c[6] + c[7] - c[1] - c[2] - c[3];
    sums.totals_done = true;
}

double TotalOf(std::size_t column, int mode) {
    Accumulators& sums = Sums();
    if (!sums.totals_done) CloseColumns(sums);
    const Columns& columns = mode == kTurnover  ? sums.turnover
                             : mode == kOpening ? sums.opening
                                                : sums.closing;
    return columns[column];
}

Text Total(std::size_t column, int mode) {
    const double total = TotalOf(column, mode);
    return total == 0 ? Text(kNoAmount) : AmountText(total);
}

Text FieldAmount(const Recordset& row, TextView field, int mode) {
    Accumulators& sums = Sums();
    if (sums.totals_done) sums = {};
    const Value& value = row.Field(field);
    if (IsNull(value)) return Text(kNoAmount);
    const double amount = TenThousandths(value);
    if (field.size() == 2) {
        const std::size_t column = ColumnNumber(field.substr(1));
        if (mode == kTurnover) {
            sums.turnover[column] += amount;
        } else {
            sums.opening[column] = amount;
        }
    }
    return AmountText(amount);
}

}  // namespace

Text GetMoney(const Recordset* row, TextView key, int mode) {
    if (ParseNumber(key)) return Total(ColumnNumber(key), mode);
    if (row == nullptr) throw Failure(RunTimeError::InvalidProcedureCall, key);
    return FieldAmount(*row, key, mode);
}

double ClosingBalance() {
    return TotalOf(kColumns, kClosing) / kTenThousandths;
}

}  // namespace tav
