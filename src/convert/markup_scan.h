// Where the children of the root element stand in the bytes of a document.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tav {

struct ChildSpan {
    std::string_view name;
    std::size_t begin = 0;  // at its "<"
    std::size_t end = 0;    // behind its ">"
};

// For a well-formed document without a document type declaration, in an encoding that extends ASCII by
// single bytes.
std::vector<ChildSpan> ChildrenOfRoot(std::string_view document);

}  // namespace tav
