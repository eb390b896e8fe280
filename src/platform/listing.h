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
        std::ranges::sort(found_, [](const auto& a, const auto& b) {
            const int order = a.first.compare(b.first);
            return order != 0 ? order < 0 : NameOf(a.second) < NameOf(b.second);
        });
        std::vector<File> files;
        files.reserve(found_.size());
        for (auto& entry : found_) files.push_back(std::move(entry.second));
        return files;
    }

 private:
    static const Text& NameOf(const Text& name) { return name; }
    static const Text& NameOf(const auto& file) { return file.name; }

    std::vector<std::pair<Text, File>> found_;  // with the upper-cased name
};

}  // namespace tav
