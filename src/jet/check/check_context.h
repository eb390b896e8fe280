// What the parts of the checker share: the pages of the file, who owns them, and the findings.
//
// Nothing here trusts the file: a page number, a slot, an offset is looked at before it is used, every page
// is claimed by one owner at most, every map is read once at most. So the work stays in proportion to the
// file's size whatever its bytes are.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "jet/check/checker.h"
#include "jet/file/format.h"
#include "jet/file/page_file.h"

namespace tav::jet::check {

using Bytes = std::span<const std::uint8_t>;

inline constexpr std::size_t kDataHeader = 14;

// A slot of a data page, its record inside the page.
struct Slot {
    std::uint16_t flags = 0;  // kSlotMoved, kSlotBody, kSlotDeleted (data_page.h), or 0
    Bytes record;
};
// The slot count that a data page claims, but never more than fit a page.
std::size_t SlotCount(const Page& page);
// No value when there is no such slot, or its record would not lie inside the page.
std::optional<Slot> SlotAt(const Page& page, std::size_t slot);

class CheckContext {
 public:
    explicit CheckContext(PageFile& file);

    PageNumber PageCount() const { return static_cast<PageNumber>(owners_.size()); }
    // A page below PageCount. Valid until the next Trim.
    const Page& At(PageNumber page) { return file_->Read(page); }
    void Trim() { file_->Trim(); }
    PageFile& file() { return *file_; }

    // Whether nobody but this program has written the file, so that all counters are exact.
    bool IsOwnFile() const { return own_file_; }
    void SetOwnFile() { own_file_ = true; }

    void Error(int invariant, Text text) { Add(true, invariant, std::move(text)); }
    void Note(int invariant, Text text) { Add(false, invariant, std::move(text)); }
    std::vector<Finding> Take();

    // Pages are owned: by the header, by a definition, by the data of a table, by an index, ...
    using Owner = std::uint32_t;
    static constexpr Owner kNobody = 0;
    static constexpr Owner kMapPages = 1;  // all map pages together, because tables share them
    Owner NewOwner(Text name);
    const Text& NameOf(Owner owner) const { return names_[owner]; }
    Owner OwnerOf(PageNumber page) const { return owners_[page]; }
    // False, and a finding, when the page lies beyond the end or belongs to somebody else already.
    bool Claim(PageNumber page, Owner owner);

    // The global free map. Until it is set, every page is in use.
    void SetFree(std::vector<bool> free) { free_ = std::move(free); }
    bool IsFree(PageNumber page) const { return page < free_.size() && free_[page]; }

    // The bits of a usage map, ascending; its bitmap pages are claimed. No value when the map itself is damaged.
    // A record that has been read before is not read again.
    struct MapBits {
        PageNumber first = 0;  // what the first bit stands for
        Bytes bits;
        PageNumber bitmap = 0;  // their page, 0 for an inline map's
    };
    std::optional<std::vector<MapBits>> ReadBits(Pointer record, TextView purpose);
    // The pages of a usage map, ascending, those beyond the end left out.
    std::optional<std::vector<PageNumber>> ReadMap(Pointer record, TextView purpose);
    // The same, and its pages are claimed; what belongs to somebody else is left out.
    std::vector<PageNumber> ClaimMap(Pointer record, TextView purpose, Owner owner);

 private:
    void Add(bool error, int invariant, Text text);
    std::optional<Bytes> MapRecord(Pointer record, TextView purpose);
    // Whether one more error of that kind will be listed, so that its text is worth making.
    bool ListsError(int invariant) const;
    void CollectBits(const MapBits& map, TextView purpose, std::vector<PageNumber>& pages);

    PageFile* file_;
    std::vector<Finding> findings_;
    // Of errors and notes by invariant, those left out included.
    std::array<std::array<std::size_t, 32>, 2> counts_{};
    std::vector<Owner> owners_;
    std::vector<Text> names_;
    std::vector<bool> free_;
    bool own_file_ = false;
    std::set<Pointer> maps_;  // records read so far
};

// "table T, page 12, slot 3: " and "table T, page 12: ".
Text Place(TextView what, PageNumber page);
Text Place(TextView what, Pointer slot);

}  // namespace tav::jet::check
