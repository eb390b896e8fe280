// The file names of the statement pages of one summary.
//
// A name is made of fields joined by "_" and is valid on every file system the system runs on, whatever the
// fields hold: characters that a file name may not hold, that mean something in a link, or that the
// Windows-1251 of the summary page lacks become "_". So a link is the plain name, and word processors and
// browsers agree on what it points to.
#pragma once

#include <initializer_list>
#include <unordered_map>

#include "common/text.h"
#include "common/value.h"

namespace tav {

// "201101" of a day in January 2011, as the names have it; empty for what is no date.
Text YearAndMonth(const Value& day);

class PageNames {
 public:
    // A name of its own for every call, ".doc" included: where the fields repeat (letter case aside), "_2",
    // "_3" and so on make the difference. The first field is the longest one;
    // what is too long is cut, empty fields are left out.
    Text Take(std::initializer_list<TextView> fields);

 private:
    std::unordered_map<Text, std::size_t> uses_;  // by upper-cased name
};

}  // namespace tav
