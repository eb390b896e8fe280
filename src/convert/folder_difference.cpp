#include "convert/folder_difference.h"

#include <algorithm>
#include <list>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tav {
namespace {

// The distinct catalogue names, sorted by their letters from the last to the first.
class Tails {
 public:
    explicit Tails(const std::vector<Text>& names) {
        for (const Text& name : names) {
            if (!name.empty()) names_.push_back(name);
            lengths_.insert(name.size());
        }
        std::sort(names_.begin(), names_.end(), [](TextView a, TextView b) {
            return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
        });
        names_.erase(std::unique(names_.begin(), names_.end()), names_.end());
    }

    // The names that end in the last `depth` letters of some text, so far.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::size_t depth = 0;
    };
    Range All() const { return {0, names_.size(), 0}; }

    // Takes one letter more, to the left.
    void Narrow(Range& range, char16_t letter) const {
        const auto letter_at = [&](TextView name) { return name[name.size() - 1 - range.depth]; };
        const auto first =
            names_.begin() + static_cast<std::ptrdiff_t>(range.begin + (IsWhole(range) ? 1 : 0));
        const auto last = names_.begin() + static_cast<std::ptrdiff_t>(range.end);
        const auto low = std::lower_bound(first, last, letter,
                                          [&](TextView name, char16_t c) { return letter_at(name) < c; });
        const auto high = std::upper_bound(low, last, letter,
                                           [&](char16_t c, TextView name) { return c < letter_at(name); });
        range = {static_cast<std::size_t>(low - names_.begin()),
                 static_cast<std::size_t>(high - names_.begin()), range.depth + 1};
    }
    // Whether the letters taken are a name: the first of the range.
    bool IsWhole(const Range& range) const {
        return range.begin < range.end && names_[range.begin].size() == range.depth;
    }

    // The place of a name, for those that have one.
    std::size_t PlaceOf(TextView name) const {
        Range range = All();
        for (std::size_t i = name.size(); i-- > 0;) Narrow(range, name[i]);
        return range.begin;
    }
    std::size_t size() const { return names_.size(); }
    bool HasLength(std::size_t length) const { return lengths_.contains(length); }

 private:
    std::vector<TextView> names_;
    std::unordered_set<std::size_t> lengths_;
};

// One line of the text; its letters are pieces of listed names.
struct Line {
    std::list<TextView> pieces;
    std::size_t length = 0;
    Tails::Range range;
    bool alive = true;
};

class Listing {
 public:
    Listing(const std::vector<Text>& listed, const Tails& tails)
        : tails_(tails), lines_(listed.size() + 1), next_(listed.size() + 1), with_tail_(tails.size()) {
        for (std::size_t i = 0; i < listed.size(); ++i) {
            lines_[i].range = tails_.All();
            next_[i] = i + 1;
            Extend(i, {listed[i]}, listed[i].size());
        }
        // Behind the last CR LF: what is cut off in front of it gathers here and is no line of the text.
        next_.back() = listed.size();
    }

    bool HasLine(TextView name) const { return whole_.contains(UpperCase(name)); }

    // Removes every occurrence of name + CR LF.
    void Remove(TextView name) {
        const std::vector<std::size_t> lines = std::move(with_tail_[tails_.PlaceOf(name)]);
        for (const std::size_t line : lines) {
            if (lines_[line].alive) Cut(line, name.size());
        }
    }

    std::vector<Text> Lines() const {
        std::vector<Text> lines;
        for (const Line& line : lines_) {
            if (line.alive && line.length > 0) lines.push_back(Letters(line));
        }
        return lines;
    }

 private:
    bool IsText(std::size_t line) const { return line + 1 < lines_.size(); }

    // Line and CR LF lose `tail` letters at the end; the rest runs together with the following line.
    void Cut(std::size_t index, std::size_t tail) {
        Line& line = lines_[index];
        CountWhole(line, -1);
        line.alive = false;
        line.length -= tail;
        while (tail > 0) {
            TextView& last = line.pieces.back();
            const std::size_t cut = std::min(tail, last.size());
            last.remove_suffix(cut);
            tail -= cut;
            if (last.empty()) line.pieces.pop_back();
        }
        if (line.length > 0) Extend(Following(index), std::move(line.pieces), line.length);
    }

    // Puts letters in front of a line.
    void Extend(std::size_t index, std::list<TextView> pieces, std::size_t length) {
        Line& line = lines_[index];
        if (IsText(index)) {
            if (line.length > 0) CountWhole(line, -1);
            for (auto piece = pieces.rbegin(); piece != pieces.rend() && line.range.begin < line.range.end;
                 ++piece) {
                Follow(index, *piece);
            }
        }
        line.pieces.splice(line.pieces.begin(), pieces);
        line.length += length;
        if (IsText(index)) CountWhole(line, +1);
    }

    void Follow(std::size_t index, TextView piece) {
        Tails::Range& range = lines_[index].range;
        for (std::size_t i = piece.size(); i-- > 0 && range.begin < range.end;) {
            tails_.Narrow(range, piece[i]);
            if (tails_.IsWhole(range)) with_tail_[range.begin].push_back(index);
        }
    }

    // The living line behind `index`, skipping the dead ones for good.
    std::size_t Following(std::size_t index) {
        std::size_t found = next_[index];
        while (!lines_[found].alive) found = next_[found];
        for (std::size_t at = index; at != found;) at = std::exchange(next_[at], found);
        return found;
    }

    // Only a line as long as some name can ever be asked for.
    void CountWhole(const Line& line, int change) {
        if (!tails_.HasLength(line.length)) return;
        const auto at = whole_.try_emplace(UpperCase(Letters(line)), 0).first;
        at->second += change;
        if (at->second == 0) whole_.erase(at);
    }

    static Text Letters(const Line& line) {
        Text letters;
        for (const TextView piece : line.pieces) letters.append(piece);
        return letters;
    }

    const Tails& tails_;
    std::vector<Line> lines_;
    std::vector<std::size_t> next_;
    std::vector<std::vector<std::size_t>> with_tail_;  // by place of the name: lines that end in it
    std::unordered_map<Text, int> whole_;              // upper-cased lines and how often
};

}  // namespace

FolderDifference CompareFolder(const std::vector<Text>& listed, const std::vector<Text>& catalogued) {
    FolderDifference difference;
    difference.new_files = static_cast<int>(listed.size());
    const Tails tails(catalogued);
    Listing listing(listed, tails);
    for (const Text& name : catalogued) {
        if (listing.HasLine(name)) {
            listing.Remove(name);
            --difference.new_files;
        } else {
            difference.departed.push_back(name);
        }
    }
    difference.remaining = listing.Lines();
    return difference;
}

}  // namespace tav
