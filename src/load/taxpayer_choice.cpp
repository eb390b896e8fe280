#include "load/taxpayer_choice.h"

#include <algorithm>

#include "settings/session.h"

namespace tav {

TaxpayerChoice::TaxpayerChoice(TextView inn, TextView kpp) : inns_(InnsOf(inn)), kpp_(Trim(kpp)) {
    if (inn.find(u'|') == inn.npos) return;
    for (Text& one : inns_) one = UpperCase(one);
    several_ = true;
}

TaxpayerChoice TaxpayerChoice::Everybody() {
    TaxpayerChoice everybody({}, {});
    everybody.everybody_ = true;
    return everybody;
}

bool TaxpayerChoice::HasInn(TextView inn) const {
    if (!several_) return inn == inns_.front();
    return std::ranges::find(inns_, UpperCase(inn)) != inns_.end();
}

bool TaxpayerChoice::HasKpp(TextView kpp) const {
    return several_ || kpp == kpp_ || IsEverySubdivision(kpp_);
}

}  // namespace tav
