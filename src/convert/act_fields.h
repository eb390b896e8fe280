// Where a reconciliation act in XML keeps its values: 111
// attributes, in the order in which the catalogue entry has them.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "common/text.h"

namespace tav {

struct ActField {
    TextView path;  // of the attribute; one that does not begin with "//" starts at the act's section 2
    std::string_view name;  // "h1", "p11", "perb"
};

// The head first (fields 1 to 10), then the 101 amounts.
std::span<const ActField> ActFields();

// The path from the document's root on.
Text FullPath(const ActField& field);
// The name of its catalogue element: "h1" is h01, "p11" is p0011, "perb" stays.
std::string ElementName(const ActField& field);

}  // namespace tav
