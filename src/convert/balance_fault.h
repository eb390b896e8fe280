// A statement proves itself by its running balances: within one kind of payment (p09) a line's balance p13 is the
// one before it, plus p11, minus p10; over all kinds the same holds for p14. The lines before the first dated one
// (p01) are the opening balances, from which it starts. A balance that cannot be read is passed over.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "convert/catalogue_elements.h"

namespace tav {

// Is given the lines of a statement by whoever reads them.
class RunningBalances {
 public:
    // A value of the present line, by its element's name; the bytes stay as long as this.
    void Add(std::string_view element, std::string_view text);
    // A line without any value is passed over: the numbering that stands before the lines.
    void EndLine();
    // The number, from 1, of the first line that does not follow from those before it. None when they all do, and
    // when more than a tenth of them do not, because such a statement has another form.
    std::optional<int> FirstFault() const;

 private:
    using Amount = std::optional<std::int64_t>;  // in ten-thousandths
    struct Line {
        bool any = false;
        bool dated = false;
        std::string_view kind;
        Amount charged;
        Amount paid;
        Amount balance;
        Amount total;
    };

    bool Follows(Amount& before, const Amount& balance, std::int64_t change) const;

    Line line_;
    bool started_ = false;
    int lines_ = 0;
    int faults_ = 0;
    int first_fault_ = 0;
    Amount total_;
    std::unordered_map<std::string_view, Amount> by_kind_;
};

// The same of a part of the catalogue.
std::optional<int> BalanceFault(const CatalogueElement& part);

}  // namespace tav
