// A statement proves itself by its running balances: within one kind of payment (p09) a line's balance p13 is the
// one before it, plus p11, minus p10; over all kinds the same holds for p14. The lines before the first dated one
// (p01) are the opening balances, from which it starts. A balance that cannot be read is passed over.
#pragma once

#include <string_view>
#include <vector>

namespace tav {

// Of each statement of a catalogue entry that has such a line: the number, from 1, of its first line that does
// not follow from those before it. A statement of which more than a tenth of the lines do not has another form
// and is left out.
std::vector<int> BalanceFaults(std::string_view entry);

}  // namespace tav
