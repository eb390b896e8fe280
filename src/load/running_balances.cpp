#include "load/running_balances.h"

namespace tav {
namespace {

std::int64_t OrZero(const std::optional<Money>& amount) {
    return amount ? amount->ten_thousandths : 0;
}

}  // namespace

// After a line that does not follow, the balance is what that line says.
bool RunningBalances::Follows(Balance& before, const std::optional<Money>& balance,
                              std::int64_t change) const {
    if (!balance) return true;
    const Balance expected = before ? Balance(*before + change) : before;
    before = balance->ten_thousandths;
    return !started_ || !expected || *expected == balance->ten_thousandths;
}

void RunningBalances::Add(const BalanceLine& line) {
    ++lines_;
    started_ = started_ || line.dated;
    const std::int64_t change = OrZero(line.paid) - OrZero(line.charged);
    const bool kind_follows = Follows(by_kind_[Text(line.kind)], line.balance, change);
    const bool total_follows = Follows(total_, line.total_balance, change);
    if (kind_follows && total_follows) return;
    if (++faults_ == 1) first_fault_ = lines_;
}

std::optional<int> RunningBalances::FirstFault() const {
    constexpr int kMostFaults = 10;  // one line in so many
    if (faults_ == 0 || faults_ * kMostFaults > lines_) return std::nullopt;
    return first_fault_;
}

}  // namespace tav
