// A statement proves itself by its running balances: within one kind of payment (p9) a line's balance p13 is the
// one before it, plus p11, minus p10; over all kinds the same holds for p14. The lines before the first dated one
// are the opening balances, from which it starts.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "common/text.h"
#include "common/value.h"

namespace tav {

// One line; an amount that is missing or no number has no value.
struct BalanceLine {
    bool dated = false;
    TextView kind;
    std::optional<Money> charged;        // p10
    std::optional<Money> paid;           // p11
    std::optional<Money> balance;        // p13
    std::optional<Money> total_balance;  // p14
};

class RunningBalances {
 public:
    // The next line, in the order of the document.
    void Add(const BalanceLine& line);

    // The number, from 1, of the first line that does not follow from those before it. None when all do, and
    // none when more than a tenth do not: such a document has another form.
    std::optional<int> FirstFault() const;

 private:
    // The balance before, if one is known.
    using Balance = std::optional<std::int64_t>;

    bool Follows(Balance& before, const std::optional<Money>& balance, std::int64_t change) const;

    bool started_ = false;
    int lines_ = 0;
    int faults_ = 0;
    int first_fault_ = 0;
    Balance total_;
    std::unordered_map<Text, Balance> by_kind_;
};

}  // namespace tav
