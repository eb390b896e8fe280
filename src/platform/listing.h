// The files that a listing of a folder gives, whatever system lists it.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "common/text.h"

namespace tav {

template <class File>
class Listing {
 public:
    void Add(Text upper_cased_name, File file) {
        found_.emplace_back(std::move(upper_cased_name), std::move(file));
    }
    // What was added, in the order of the upper-cased names; of two that differ in letter case only, in
    // their own.
    std::vector<File> Sorted() {
        std::vector<Found*> order;
        order.reserve(found_.size());
        for (Found& found : found_) order.push_back(&found);
        std::ranges::sort(order, [](const Found* a, const Found* b) {
            const int names = a->first.compare(b->first);
            return names != 0 ? names < 0 : NameOf(a->second) < NameOf(b->second);
        });
        std::vector<File> files;
        files.reserve(order.size());
        for (Found* const found : order) files.push_back(std::move(found->second));
        return files;
    }

 private:
    static const Text& NameOf(const Text& name) { return name; }
    static const Text& NameOf(const auto& file) { return file.name; }

    using Found = std::pair<Text, File>;  // with the upper-cased name
    std::vector<Found> found_;
};

}  // namespace tav
