// Printed forms of every make: each layout, cut and way to write letters, with other counts each.
#pragma once

#include <vector>

#include "samples/generator.h"

namespace tav::samples {

inline std::vector<Document> EveryMake() {
    std::vector<Document> documents;
    int number = 0;
    for (const Cut cut : {Cut::None, Cut::BetweenGroups, Cut::InsideGroup}) {
        for (const Letters letters :
             {Letters::LowerHex, Letters::UpperHex, Letters::Unicode, Letters::UnicodeHex, Letters::Raw}) {
            for (const int layout : {1, 2}) {
                ++number;
                documents.push_back(MakeStatement({.name = u"statement " + Digits(number) + u".rtf",
                                                   .rows = number % 7 * 9,
                                                   .layout = layout,
                                                   .cut = cut,
                                                   .letters = letters,
                                                   .all_zero = number % 8 == 0,
                                                   .repeat_numbering = number % 4 < 2,
                                                   .second_line_every = number % 5,
                                                   .parts = 1 + number % 3,
                                                   .seed = static_cast<std::uint64_t>(number)}));
            }
            documents.push_back(MakeActRtf({.name = u"act " + Digits(number) + u".rtf",
                                            .all_zero = number % 5 == 0,
                                            .cut = cut,
                                            .letters = letters,
                                            .parts = 1 + number % 3,
                                            .seed = static_cast<std::uint64_t>(number)}));
        }
    }
    return documents;
}

}  // namespace tav::samples
