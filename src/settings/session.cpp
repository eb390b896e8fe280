#include "settings/session.h"

#include "common/get_next.h"
#include "platform/environment.h"

namespace tav {

CurrentTaxpayer& Taxpayer() {
    static CurrentTaxpayer taxpayer;
    return taxpayer;
}

std::vector<Text> InnsOf(TextView text) {
    if (text.find(u'|') == TextView::npos) return {Text(Trim(text))};
    std::vector<Text> inns;
    while (!text.empty()) {
        const TextView inn = Trim(GetNext(text, u"|"));
        if (!inn.empty()) inns.emplace_back(inn);
    }
    return inns;
}

AtOnce& StartedFor() {
    static AtOnce at_once;
    return at_once;
}

std::atomic<std::int32_t>& CancelStamp() {
    static std::atomic<std::int32_t> stamp = 0;
    return stamp;
}

std::int32_t TimeStamp() {
    const ClockTime time = Now().time;
    return time.hour * 10000 + time.minute * 100 + time.second;
}

void RequestCancel() {
    CancelStamp() = TimeStamp();
}

bool PassCancelGuard() {
    if (CancelStamp() != 0 && CancelStamp() == TimeStamp()) return false;
    CancelStamp() = 0;
    return true;
}

}  // namespace tav
