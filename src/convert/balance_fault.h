// A statement proves itself by its running balances: within one kind of payment (p09) a line's balance p13 is the
// one before it, plus p11, minus p10; over all kinds the same holds for p14. The lines before the first dated one
// (p01) are the opening balances, from which it starts. A balance that cannot be read is passed over.
#pragma once

#include <optional>

#include "convert/catalogue_elements.h"

namespace tav {

// Of a part of the catalogue: the number, from 1, of its first line that does not follow from those before it.
// None when they all do, and when more than a tenth of them do not, because such a statement has another form.
std::optional<int> BalanceFault(const CatalogueElement& part);

}  // namespace tav
