#include "jet/index/index_split.h"

#include <algorithm>
#include <vector>

#include "jet/index/index_page.h"

namespace tav::jet {

namespace {

// Bytes of the entries in front of each one, and of all.
std::vector<std::size_t> Sums(std::span<const std::string> entries) {
    std::vector<std::size_t> sums = {0};
    for (const std::string& entry : entries) sums.push_back(sums.back() + entry.size());
    return sums;
}

// The position in [begin, end) for which the larger of the two sides is smallest.
template <class Left, class Right>
std::size_t Middle(std::size_t begin, std::size_t end, Left left, Right right) {
    std::size_t best = begin;
    std::size_t best_size = std::max(left(begin), right(begin));
    for (std::size_t cut = begin + 1; cut < end; ++cut) {
        const std::size_t size = std::max(left(cut), right(cut));
        if (size < best_size) {
            best = cut;
            best_size = size;
        }
    }
    return best;
}

}  // namespace

std::size_t CutLeaf(std::span<const std::string> entries, bool appended) {
    const std::size_t count = entries.size();
    if (appended) return count - 2;
    const std::vector<std::size_t> sums = Sums(entries);
    const auto packed = [&](std::size_t begin, std::size_t end) {
        return sums[end] - sums[begin] - (end - begin - 1) * CommonPrefix(entries[begin], entries[end - 1]);
    };
    return Middle(
        0, count - 1, [&](std::size_t cut) { return packed(0, cut + 1); },
        [&](std::size_t cut) { return packed(cut + 1, count); });
}

std::size_t CutNode(std::span<const std::string> entries, bool appended) {
    const std::size_t count = entries.size();
    if (appended) return count - 2;
    const std::vector<std::size_t> sums = Sums(entries);
    return Middle(
        1, count - 1, [&](std::size_t cut) { return sums[cut]; },
        [&](std::size_t cut) { return sums[count] - sums[cut + 1]; });
}

}  // namespace tav::jet
