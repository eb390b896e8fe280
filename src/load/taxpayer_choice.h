// Whose documents are loaded.
#pragma once

#include <vector>

#include "common/text.h"

namespace tav {

class TaxpayerChoice {
 public:
    // `inn`: one INN, or several between "|", to which any KPP belongs. `kpp`: 16 characters or more stand for
    // any. Outer spaces are no part of either.
    TaxpayerChoice(TextView inn, TextView kpp);
    // Every document, whoever's it is.
    static TaxpayerChoice Everybody();

    bool Owns(TextView inn, TextView kpp) const { return everybody_ || (HasInn(inn) && HasKpp(kpp)); }

 private:
    bool HasInn(TextView inn) const;
    bool HasKpp(TextView kpp) const;

    bool everybody_ = false;
    bool several_ = false;
    std::vector<Text> inns_;  // several: upper-cased
    Text kpp_;
};

}  // namespace tav
