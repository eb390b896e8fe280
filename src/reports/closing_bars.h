// The bars of a summary's picture: what each tax closes with.
#pragma once

#include <map>
#include <tuple>
#include <vector>

#include "common/text.h"
#include "common/value.h"
#include "pdf/sheet.h"

namespace tav {

class ClosingBars {
 public:
    // The balance of the tax `name` in one place (OKATO) at the end of a document's period. Of several documents
    // of a place the latest one counts.
    void Take(TextView name, TextView okato, const Value& end, double balance);
    // One for each tax, in the order they were first met; its places added up.
    std::vector<AmountsPicture::Bar> Bars() const;

 private:
    struct Closing {
        double end = 0;
        double balance = 0;
    };
    std::vector<Text> names_;
    std::map<std::pair<Text, Text>, Closing> places_;
};

}  // namespace tav
