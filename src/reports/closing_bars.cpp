#include "reports/closing_bars.h"

#include <algorithm>

namespace tav {

void ClosingBars::Take(TextView name, TextView okato, const Value& end, double balance) {
    const Date* date = std::get_if<Date>(&end);
    const Closing closing{date == nullptr ? 0 : date->serial, balance};
    const auto [place, is_new] = places_.try_emplace({Text(name), Text(okato)}, closing);
    if (!is_new && place->second.end <= closing.end) place->second = closing;
    if (std::find(names_.begin(), names_.end(), name) == names_.end()) names_.emplace_back(name);
}

std::vector<AmountsPicture::Bar> ClosingBars::Bars() const {
    std::vector<AmountsPicture::Bar> bars;
    for (const Text& name : names_) {
        AmountsPicture::Bar& bar = bars.emplace_back(AmountsPicture::Bar{name, 0});
        for (auto place = places_.lower_bound({name, {}}); place != places_.end(); ++place) {
            if (place->first.first != name) break;
            bar.amount += place->second.balance;
        }
    }
    return bars;
}

}  // namespace tav
