#include "load/taxpayer_choice.h"

#include "common/concat.h"
#include "settings/session.h"

namespace tav {

TaxpayerChoice::TaxpayerChoice(TextView inn, TextView kpp) : inn_(Trim(inn)), kpp_(Trim(kpp)) {
    if (inn_.find(u'|') == inn_.npos) return;
    if (!inn_.starts_with(u'|')) inn_.insert(0, u"|");
    if (!inn_.ends_with(u'|')) inn_ += u'|';
    inn_ = UpperCase(inn_);
    kpp_ = kAllSubdivisions;
}

TaxpayerChoice TaxpayerChoice::Everybody() {
    TaxpayerChoice everybody({}, {});
    everybody.everybody_ = true;
    return everybody;
}

bool TaxpayerChoice::HasInn(TextView inn) const {
    return inn == inn_ || inn_.find(Concat(u"|", UpperCase(inn), u"|")) != inn_.npos;
}

bool TaxpayerChoice::HasKpp(TextView kpp) const {
    return kpp == kpp_ || IsEverySubdivision(kpp_);
}

}  // namespace tav
