// The names that a listing of a folder gives, whatever system lists it.
#pragma once

#include <utility>
#include <vector>

#include "common/text.h"

namespace tav {

class Listing {
 public:
    explicit Listing(TextView ending) : ending_(ending) {}

    // Whether the name ends as asked, without regard to letter case.
    bool Wants(TextView name) const {
        return name.size() >= ending_.size() && EqualNoCase(Right(name, ending_.size()), ending_);
    }
    void Add(Text name) { found_.emplace_back(UpperCase(name), std::move(name)); }
    // What was added, in the order of the upper-cased names.
    std::vector<Text> Sorted();

 private:
    TextView ending_;
    std::vector<std::pair<Text, Text>> found_;  // upper-cased name, name
};

}  // namespace tav
