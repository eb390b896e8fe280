// One page of an index tree: its entries, read and changed in place.
//
// The page: byte 0 is 3 (node) or 4 (leaf), 2: u16 bytes free, 4: u32 the table, 12 and 16: u32 the pages
// before and after on the same level, 20: u32 "tail" (a node's last child), 24: u16 length of the shared
// prefix, 26: height above the leaves, 27: the mask, 480: 3616 bytes of entries, back to back. Bit i of the
// mask says that an entry ends at offset i of the entries; the highest bit ends the space in use.
//
// An entry is a key and a row id, in a node also a child page, both big-endian. The first one is stored
// whole; from all others the first `prefix` bytes of it are left out, which may reach into the row id.
//
// What a damaged page claims never leads out of its bytes; where it contradicts itself, a Failure names file
// and page.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet {

inline constexpr std::size_t kHeightAt = 26;
inline constexpr std::size_t kMaskAt = 27;
inline constexpr std::size_t kEntriesAt = 480;
inline constexpr std::size_t kEntrySpace = kPageSize - kEntriesAt;
inline constexpr std::size_t kRowIdSize = 4;
inline constexpr std::size_t kChildSize = 4;

// A u32 as index entries hold it.
std::string BigEndian(std::uint32_t word);

// An entry is named by its place: the offset where it begins among the entries. A place of Used() stands
// after the last entry; in a node it means the tail.
class IndexPage {
 public:
    // `page` and `file` (its path) stay alive as long as this.
    IndexPage(const Page& page, PageNumber number, TextView file);

    PageNumber number() const { return number_; }
    bool IsLeaf() const { return bytes_[0] == static_cast<std::uint8_t>(PageType::IndexLeaf); }
    PageNumber Table() const { return U32(bytes_ + 4); }
    PageNumber Previous() const { return U32(bytes_ + 12); }
    PageNumber Next() const { return U32(bytes_ + 16); }
    PageNumber Tail() const { return U32(bytes_ + 20); }
    std::uint8_t Height() const { return bytes_[kHeightAt]; }
    std::size_t Used() const { return used_; }
    bool IsEmpty() const { return used_ == 0; }
    // How many entries there are.
    std::size_t Count() const;

    // The first entry whose key and row id are not below `bytes`.
    std::size_t Find(std::string_view bytes) const;
    // The place after an entry.
    std::size_t After(std::size_t place) const;
    // The last entry of a page that is not empty.
    std::size_t LastPlace() const { return Boundary(used_ - 1); }
    // Key and row id.
    std::string Entry(std::size_t place) const;
    bool Equals(std::size_t place, std::string_view entry) const;
    // The child a node's entry leads to; at Used() the tail.
    PageNumber Child(std::size_t place) const;

    [[noreturn]] void Damaged(TextView reason) const;

 protected:
    std::string_view Stored(std::size_t begin, std::size_t end) const;
    // An entry with its prefix and, in a node, its child.
    std::string Whole(std::size_t place) const;
    std::uint64_t MaskWord(std::size_t word) const;
    std::size_t ChildSize() const { return IsLeaf() ? 0 : kChildSize; }

    const std::uint8_t* bytes_;
    std::size_t used_ = 0;
    std::size_t prefix_ = 0;

 private:
    // The highest entry end not above `place`, 0 when there is none.
    std::size_t Boundary(std::size_t place) const;
    // An entry's two parts, without the child: what the first entry shares with it, and what is stored.
    struct Parts {
        std::string_view shared;
        std::string_view own;
    };
    Parts Split(std::size_t place) const;
    int Compare(std::size_t place, std::string_view bytes) const;

    PageNumber number_;
    TextView file_;
};

// The same, to change it. Free space, mask and prefix always agree with the entries.
class IndexPageEditor : public IndexPage {
 public:
    IndexPageEditor(Page& page, PageNumber number, TextView file);

    // Makes a page an empty leaf, or a node without entries that has only its tail, so far above the leaves.
    static void FormatLeaf(Page& page, PageNumber table);
    static void FormatNode(Page& page, PageNumber table, PageNumber tail, std::uint8_t height);

    void SetPrevious(PageNumber page) { PutU32(to_ + 12, page); }
    void SetNext(PageNumber page) { PutU32(to_ + 16, page); }
    void SetTail(PageNumber page) { PutU32(to_ + 20, page); }

    // Puts an entry (in a node with its child) in front of the one at `place`. False, and nothing changed,
    // when it does not fit as the page is packed now.
    bool Insert(std::size_t place, std::string_view entry);
    void Erase(std::size_t place) { Erase(place, After(place)); }
    // The entries from the one at `begin` to the one at `end`, which stays.
    void Erase(std::size_t begin, std::size_t end);

    // What Insert could not take: all entries with the new one among them.
    struct Overflow {
        std::vector<std::string> entries;
        std::size_t added = 0;  // position of the new one
    };
    Overflow With(std::size_t place, std::string_view entry) const;
    // Replaces all entries by these, which ascend; a leaf leaves out their longest common prefix when they do
    // not fit otherwise. False, and nothing changed, when they do not fit at all.
    bool Pack(std::span<const std::string> entries);

 private:
    // Replaces `removed` bytes at `at` by `added`, an entry or nothing. Ends of later entries move along,
    // those within the removed bytes go.
    void Splice(std::size_t at, std::size_t removed, std::string_view added);
    void SetEnd(std::size_t end) { to_[kMaskAt + end / 8] |= static_cast<std::uint8_t>(1 << end % 8); }
    void PutMaskWord(std::size_t word, std::uint64_t bits);
    void SetUsed(std::size_t used);
    void SetPrefix(std::size_t prefix);

    std::uint8_t* to_;
};

// How many bytes ascending entries have in common that a page may leave out: never all of the first one.
std::size_t CommonPrefix(std::string_view first, std::string_view last);

}  // namespace tav::jet
