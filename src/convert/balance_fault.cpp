#include "convert/balance_fault.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tav {
namespace {

using Amount = std::optional<std::int64_t>;  // in ten-thousandths

constexpr int kDecimals = 4;
constexpr int kMostFaults = 10;  // one line in so many

// "-1 234.50", "+1.5"; none of a text that is no such number, too fine or too large.
Amount AmountOf(std::string_view text) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 1'000'000;
    text.remove_prefix(std::min(text.find_first_not_of(" \xA0"), text.size()));
    const bool negative = text.starts_with('-');
    const bool has_sign = negative || text.starts_with('+');
    std::int64_t amount = 0;
    int digits = 0;
    int decimals = -1;
    for (const char c : text.substr(has_sign ? 1 : 0)) {
        if (c == ' ' || c == '\xA0') continue;
        if ((c == '.' || c == ',') && decimals < 0) {
            decimals = 0;
            continue;
        }
        if (c == '0' && decimals == kDecimals) continue;
        if (c < '0' || c > '9' || decimals == kDecimals || amount > kMost) return std::nullopt;
        amount = 10 * amount + (c - '0');
        ++digits;
        if (decimals >= 0) ++decimals;
    }
    if (digits == 0) return std::nullopt;
    for (int i = std::max(decimals, 0); i < kDecimals; ++i) amount *= 10;
    return negative ? -amount : amount;
}

}  // namespace

void RunningBalances::Add(std::string_view element, std::string_view text) {
    line_.any = true;
    if (element.size() != 3 || element[0] != 'p') return;
    if (element == "p01") line_.dated = true;
    if (element == "p09") line_.kind = text;
    if (element == "p10") line_.charged = AmountOf(text);
    if (element == "p11") line_.paid = AmountOf(text);
    if (element == "p13") line_.balance = AmountOf(text);
    if (element == "p14") line_.total = AmountOf(text);
}

void RunningBalances::EndLine() {
    const Line line = std::exchange(line_, {});
    if (!line.any) return;
    ++lines_;
    started_ = started_ || line.dated;
    const std::int64_t change = line.paid.value_or(0) - line.charged.value_or(0);
    const bool kind_follows = Follows(by_kind_[line.kind], line.balance, change);
    const bool total_follows = Follows(total_, line.total, change);
    if (kind_follows && total_follows) return;
    if (++faults_ == 1) first_fault_ = lines_;
}

std::optional<int> RunningBalances::FirstFault() const {
    if (faults_ == 0 || faults_ * kMostFaults > lines_) return std::nullopt;
    return first_fault_;
}

// After a line that does not follow, the balance is what that line says.
bool RunningBalances::Follows(Amount& before, const Amount& balance, std::int64_t change) const {
    if (!balance) return true;
    const Amount expected = before ? Amount(*before + change) : before;
    before = balance;
    return !started_ || !expected || *expected == *balance;
}

std::optional<int> BalanceFault(const CatalogueElement& part) {
    RunningBalances balances;
    for (const CatalogueElement& body : ElementsOf(part.content, "body")) {
        for (const CatalogueElement& row : ElementsOf(body.content, "row")) {
            for (const CatalogueElement& value : ElementsOf(row.content))
                balances.Add(value.name, value.content);
            balances.EndLine();
        }
    }
    return balances.FirstFault();
}

}  // namespace tav
