// The entries of one index page, read without trust.
#pragma once

#include <string>
#include <vector>

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet::check {

struct IndexPage {
    bool leaf = true;
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;               // the last child of a node
    int height = 0;                    // above the leaves
    std::vector<std::string> entries;  // whole, with the prefix put back; a node's without the child
    std::vector<PageNumber> children;  // one per entry of a node
    std::vector<Text> faults;          // what is wrong with the page
};

// Of a page of type node or leaf.
IndexPage ReadIndexPage(const Page& page);

}  // namespace tav::jet::check
