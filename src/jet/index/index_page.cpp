#include "jet/index/index_page.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "jet/file/page_file.h"

namespace tav::jet {

namespace {

constexpr std::size_t kMaskSize = kEntriesAt - kMaskAt;
constexpr std::size_t kWordShift = 6;
constexpr std::size_t kWordBits = 1 << kWordShift;
constexpr std::size_t kMaskWords = (kMaskSize * 8 + kWordBits - 1) / kWordBits;
constexpr std::uint64_t kLastWord = (std::uint64_t{1} << kMaskSize * 8 % kWordBits) - 1;

// The mask is read in words whose lowest bit is the first byte's.
static_assert(std::endian::native == std::endian::little);

// In the word of the mask that has the bit `place`: that bit and those below.
std::uint64_t BitsUpTo(std::size_t place) {
    return ~std::uint64_t{0} >> (kWordBits - 1 - place % kWordBits);
}

void Format(Page& page, PageType type, PageNumber table) {
    page.fill(0);
    page[0] = static_cast<std::uint8_t>(type);
    page[1] = 1;
    PutU16(&page[2], kEntrySpace);
    PutU32(&page[4], table);
}

}  // namespace

std::string BigEndian(std::uint32_t word) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(word >> shift);
    return bytes;
}

std::size_t CommonPrefix(std::string_view first, std::string_view last) {
    const auto limit = static_cast<std::ptrdiff_t>(std::min(first.size() - 1, last.size()));
    return static_cast<std::size_t>(std::mismatch(first.begin(), first.begin() + limit, last.begin()).first -
                                    first.begin());
}

inline std::uint64_t IndexPage::MaskWord(std::size_t word) const {
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes_ + kMaskAt + word * sizeof(bits), sizeof(bits));
    return word + 1 < kMaskWords ? bits : bits & kLastWord;  // which reaches into the entries
}

IndexPage::IndexPage(const Page& page, PageNumber number, TextView file)
    : bytes_(page.data()), prefix_(U16(&page[24])), number_(number), file_(file) {
    const auto type = static_cast<PageType>(page[0]);
    if (type != PageType::IndexLeaf && type != PageType::IndexNode) Damaged(u"it is no index page");
    const std::size_t free = U16(&page[2]);
    if (free > kEntrySpace) Damaged(u"it has more free bytes than there are");
    used_ = kEntrySpace - free;
    if (Boundary(kMaskSize * 8 - 1) != used_ || (page[kMaskAt] & 1) != 0) {
        Damaged(u"its mask contradicts its free bytes");
    }
    if (type == PageType::IndexNode && Tail() == 0) Damaged(u"it has no last child");
    if (IsEmpty()) {
        prefix_ = 0;
    } else if (After(0) <= prefix_) {
        Damaged(u"its prefix is longer than its first entry");
    }
}

void IndexPage::Damaged(TextView reason) const {
    ThrowDamaged(file_, number_, Text(u"index page: ").append(reason));
}

std::size_t IndexPage::Boundary(std::size_t place) const {
    std::size_t word = place / kWordBits;
    std::uint64_t bits = MaskWord(word) & BitsUpTo(place);
    while (bits == 0 && word > 0) bits = MaskWord(--word);
    return bits == 0 ? 0 : word * kWordBits + static_cast<std::size_t>(std::bit_width(bits)) - 1;
}

std::size_t IndexPage::Count() const {
    std::size_t count = 0;
    for (std::size_t word = 0; word < kMaskWords; ++word)
        count += static_cast<std::size_t>(std::popcount(MaskWord(word)));
    return count;
}

std::size_t IndexPage::After(std::size_t place) const {
    std::size_t word = (place + 1) / kWordBits;
    std::uint64_t bits = MaskWord(word) & ~std::uint64_t{0} << (place + 1) % kWordBits;
    while (bits == 0 && ++word < kMaskWords) bits = MaskWord(word);
    if (bits == 0) return used_;
    return std::min(used_, word * kWordBits + static_cast<std::size_t>(std::countr_zero(bits)));
}

std::string_view IndexPage::Stored(std::size_t begin, std::size_t end) const {
    return std::string_view(reinterpret_cast<const char*>(bytes_) + kEntriesAt, kEntrySpace)
        .substr(begin, end - begin);
}

IndexPage::Parts IndexPage::Split(std::size_t place) const {
    const std::string_view own = Stored(place, After(place));
    const std::string_view shared = Stored(0, place == 0 ? 0 : prefix_);
    const std::size_t size = shared.size() + own.size();
    if (size <= kRowIdSize + ChildSize()) Damaged(u"an entry is too short");
    const std::size_t content = size - ChildSize();
    if (content <= shared.size()) return {shared.substr(0, content), {}};
    return {shared, own.substr(0, content - shared.size())};
}

int IndexPage::Compare(std::size_t place, std::string_view bytes) const {
    const Parts parts = Split(place);
    const int order = parts.shared.compare(bytes.substr(0, parts.shared.size()));
    return order != 0 ? order : parts.own.compare(bytes.substr(parts.shared.size()));
}

std::size_t IndexPage::Find(std::string_view bytes) const {
    if (IsEmpty() || Compare(0, bytes) >= 0) return 0;
    // What the other entries share with the first one begins `bytes` too, or they are all below.
    if (Stored(0, prefix_) != bytes.substr(0, prefix_)) return used_;
    const std::string_view rest = bytes.substr(prefix_);
    const auto* entries = reinterpret_cast<const char*>(bytes_) + kEntriesAt;
    const auto is_below = [&](std::size_t place) {
        const std::size_t size = After(place) - place;
        const bool usual = size >= ChildSize() && prefix_ + size > kRowIdSize + ChildSize();
        if (!usual) return Compare(place, bytes) < 0;
        return std::string_view(entries + place, size - ChildSize()) < rest;
    };
    std::size_t high = LastPlace();
    if (high == 0 || is_below(high)) return used_;  // as when entries come in order
    std::size_t low = After(0);
    while (low < high) {
        const std::size_t place = Boundary((low + high) / 2);
        if (is_below(place)) {
            low = After(place);
        } else {
            high = place;
        }
    }
    return low;
}

std::string IndexPage::Entry(std::size_t place) const {
    const Parts parts = Split(place);
    return std::string(parts.shared).append(parts.own);
}

std::string IndexPage::Whole(std::size_t place) const {
    return std::string(Stored(0, place == 0 ? 0 : prefix_)).append(Stored(place, After(place)));
}

bool IndexPage::Equals(std::size_t place, std::string_view entry) const {
    return place < used_ && Compare(place, entry) == 0;
}

PageNumber IndexPage::Child(std::size_t place) const {
    if (place >= used_) return Tail();
    const std::size_t end = After(place);
    if (end - place >= kChildSize) return BigU32(bytes_ + kEntriesAt + end - kChildSize);
    const std::string whole = Whole(place);
    if (whole.size() < kChildSize) Damaged(u"an entry is too short");
    return BigU32(reinterpret_cast<const std::uint8_t*>(whole.data()) + whole.size() - kChildSize);
}

IndexPageEditor::IndexPageEditor(Page& page, PageNumber number, TextView file)
    : IndexPage(page, number, file), to_(page.data()) {}

void IndexPageEditor::FormatLeaf(Page& page, PageNumber table) {
    Format(page, PageType::IndexLeaf, table);
}

void IndexPageEditor::FormatNode(Page& page, PageNumber table, PageNumber tail, std::uint8_t height) {
    Format(page, PageType::IndexNode, table);
    PutU32(&page[20], tail);
    page[kHeightAt] = height;
}

void IndexPageEditor::SetUsed(std::size_t used) {
    used_ = used;
    PutU16(to_ + 2, static_cast<std::uint16_t>(kEntrySpace - used));
}

void IndexPageEditor::SetPrefix(std::size_t prefix) {
    prefix_ = prefix;
    PutU16(to_ + 24, static_cast<std::uint16_t>(prefix));
}

void IndexPageEditor::PutMaskWord(std::size_t word, std::uint64_t bits) {
    const std::size_t at = word * sizeof(bits);
    std::memcpy(to_ + kMaskAt + at, &bits, std::min(sizeof(bits), kMaskSize - at));
}

void IndexPageEditor::Splice(std::size_t at, std::size_t removed, std::string_view added) {
    const std::size_t end = at + removed;
    std::array<std::uint64_t, kMaskWords> moving{};
    for (std::size_t word = end / kWordBits; word < kMaskWords; ++word) moving[word] = MaskWord(word);
    moving[end / kWordBits] &= ~BitsUpTo(end);
    const auto word_at = [&](std::ptrdiff_t word) {
        const auto index = static_cast<std::size_t>(word);
        return index < kMaskWords ? moving[index] : 0;
    };
    const auto moved = static_cast<std::ptrdiff_t>(removed) - static_cast<std::ptrdiff_t>(added.size());
    const std::uint64_t kept = MaskWord(at / kWordBits) & BitsUpTo(at);
    for (std::size_t word = at / kWordBits; word < kMaskWords; ++word) {
        const std::ptrdiff_t from = static_cast<std::ptrdiff_t>(word * kWordBits) + moved;
        const int shift = static_cast<int>(from & (kWordBits - 1));
        std::uint64_t bits = word_at(from >> kWordShift) >> shift;
        if (shift != 0) bits |= word_at((from >> kWordShift) + 1) << (static_cast<int>(kWordBits) - shift);
        PutMaskWord(word, word == at / kWordBits ? bits | kept : bits);
    }
    std::uint8_t* here = to_ + kEntriesAt + at;
    std::memmove(here + added.size(), here + removed, used_ - end);
    std::copy(added.begin(), added.end(), here);
    if (!added.empty()) SetEnd(at + added.size());
    SetUsed(used_ - removed + added.size());
}

bool IndexPageEditor::Insert(std::size_t place, std::string_view entry) {
    const std::string_view prefix = Stored(0, prefix_);
    if (entry.size() <= prefix.size() || !entry.starts_with(prefix)) return false;
    if (used_ + entry.size() - prefix.size() > kEntrySpace) return false;
    SetPrefix(prefix_);
    if (place == 0) {
        Splice(0, prefix_, entry);  // the entry that was first leaves its prefix to this one
    } else {
        Splice(place, 0, entry.substr(prefix_));
    }
    return true;
}

void IndexPageEditor::Erase(std::size_t begin, std::size_t end) {
    if (begin == 0 && end < used_) {
        Splice(prefix_, end - prefix_, {});  // the next entry takes over the prefix
    } else {
        Splice(begin, end - begin, {});
    }
    if (IsEmpty()) SetPrefix(0);
}

IndexPageEditor::Overflow IndexPageEditor::With(std::size_t place, std::string_view entry) const {
    Overflow all;
    for (std::size_t at = 0; at < used_; at = After(at)) {
        if (at == place) {
            all.added = all.entries.size();
            all.entries.emplace_back(entry);
        }
        all.entries.push_back(Whole(at));
    }
    if (place >= used_) {
        all.added = all.entries.size();
        all.entries.emplace_back(entry);
    }
    const auto too_short = [least = kRowIdSize + ChildSize()](const std::string& each) {
        return each.size() <= least;
    };
    if (std::any_of(all.entries.begin(), all.entries.end(), too_short)) Damaged(u"an entry is too short");
    if (std::adjacent_find(all.entries.begin(), all.entries.end(), std::greater_equal<>()) !=
        all.entries.end()) {
        Damaged(u"its entries are not in order");
    }
    return all;
}

bool IndexPageEditor::Pack(std::span<const std::string> entries) {
    std::size_t size = 0;
    for (const std::string& entry : entries) size += entry.size();
    std::size_t prefix = 0;
    if (size > kEntrySpace && IsLeaf()) {
        prefix = CommonPrefix(entries.front(), entries.back());
        size -= (entries.size() - 1) * prefix;
    }
    if (size > kEntrySpace) return false;

    std::fill_n(to_ + kMaskAt, kMaskSize, std::uint8_t{0});
    std::size_t used = 0;
    for (const std::string& entry : entries) {
        const std::string_view stored = std::string_view(entry).substr(used == 0 ? 0 : prefix);
        std::copy(stored.begin(), stored.end(), to_ + kEntriesAt + used);
        used += stored.size();
        SetEnd(used);
    }
    SetUsed(used);
    SetPrefix(prefix);
    return true;
}

}  // namespace tav::jet
