// The module-level state that lives as long as the component is loaded.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "common/text.h"

namespace tav {

// The taxpayer the host works with. A KPP of twenty zeros
// stands for all subdivisions of a consolidated taxpayer.
struct CurrentTaxpayer {
    Text inn;
    Text kpp;
    Text date;  // "dd.mm.yyyy", the host's working date
};
CurrentTaxpayer& Taxpayer();

// The INNs of a text: one, which may be empty, or several between "|", which are not. Outer spaces are no part of an INN.
std::vector<Text> InnsOf(TextView text);

// What the main window does by itself when it is opened, and closes then.
struct AtOnce {
    bool summary = false;  // the summary of the statements; no operation of the component asks for it
    bool import = false;   // an import, with nobody at the screen
};
AtOnce& StartedFor();

inline constexpr TextView kAllSubdivisions = u"00000000000000000000";
// Whether a KPP stands for every subdivision, as any of 16 characters and more does.
inline bool IsEverySubdivision(TextView kpp) {
    constexpr std::size_t kCharacters = 16;
    return kpp.size() >= kCharacters;
}
// Whether any KPP belongs to these INNs: to several, and with such a KPP.
inline bool TakesEveryKpp(TextView inns, TextView kpp) {
    return IsEverySubdivision(kpp) || inns.find(u'|') != inns.npos;
}

// The cancel stamp: 0 when no cancel is pending, else the time of day of the last cancel as the number HHMMSS
// (143005 at 14:30:05). A cancel at exactly 00:00:00 stores 0 and is not seen.
// The windows write it, a reader on another thread looks at it.
std::atomic<std::int32_t>& CancelStamp();
// The present time of day in that form.
std::int32_t TimeStamp();
// What the cancel button does: the stamp becomes the present time.
void RequestCancel();
// The start of an import: false when it was asked for in the very second of the last cancel, which stops it;
// otherwise the stamp is reset.
bool PassCancelGuard();

}  // namespace tav
