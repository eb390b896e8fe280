#include "jet/check/check_context.h"

#include <algorithm>

#include "jet/file/bitmap.h"
#include "jet/file/data_page.h"
#include "jet/file/map_record.h"

namespace tav::jet::check {
namespace {

// So many findings of one invariant are listed; a broken file has millions.
constexpr std::size_t kListed = 50;

}  // namespace

std::size_t SlotCount(const Page& page) {
    return std::min<std::size_t>(U16(&page[12]), (kPageSize - kDataHeader) / 2);
}

std::optional<Slot> SlotAt(const Page& page, std::size_t slot) {
    if (slot >= SlotCount(page)) return std::nullopt;
    const auto word = [&page](std::size_t i) { return U16(&page[kDataHeader + 2 * i]); };
    const std::size_t start = word(slot) & 0x1FFF;
    const std::size_t end = slot == 0 ? kPageSize : word(slot - 1) & 0x1FFF;
    if (start > end || end > kPageSize || start < kDataHeader + 2 * SlotCount(page)) return std::nullopt;
    return Slot{static_cast<std::uint16_t>(word(slot) & kSlotDeleted),
                Bytes(page).subspan(start, end - start)};
}

CheckContext::CheckContext(PageFile& file)
    : file_(&file), owners_(file.PageCount()), names_{u"nobody", u"the usage maps"} {}

void CheckContext::Add(bool error, int invariant, Text text) {
    if (++counts_[error][static_cast<std::size_t>(invariant)] > kListed) return;
    findings_.push_back({error, invariant, std::move(text)});
}

bool CheckContext::ListsError(int invariant) const {
    return counts_[true][static_cast<std::size_t>(invariant)] < kListed;
}

std::vector<Finding> CheckContext::Take() {
    for (const bool error : {true, false}) {
        for (std::size_t i = 0; i < counts_[error].size(); ++i) {
            if (counts_[error][i] <= kListed) continue;
            const auto more = static_cast<long long>(counts_[error][i] - kListed);
            findings_.push_back({error, static_cast<int>(i), Digits(more) + u" more of this kind"});
        }
    }
    return std::move(findings_);
}

CheckContext::Owner CheckContext::NewOwner(Text name) {
    names_.push_back(std::move(name));
    return static_cast<Owner>(names_.size() - 1);
}

bool CheckContext::Claim(PageNumber page, Owner owner) {
    if (page >= PageCount()) {
        Error(7, Place(NameOf(owner), page) + u"the file ends before this page");
        return false;
    }
    if (owners_[page] != kNobody) {
        if (owners_[page] == owner && owner == kMapPages) return true;
        Error(5, ListsError(5)
                     ? Place(NameOf(owner), page) + u"the page belongs to " + NameOf(owners_[page]) + u" too"
                     : Text());
        return false;
    }
    owners_[page] = owner;
    if (IsFree(page)) {
        Error(6, Place(NameOf(owner), page) + u"the page is in use, but free in the global map");
    }
    return true;
}

std::optional<Bytes> CheckContext::MapRecord(Pointer record, TextView purpose) {
    const Text place = Place(purpose, record);
    const auto broken = [&](TextView what) {
        Error(4, place + Text(what));
        return std::nullopt;
    };
    if (record.page >= PageCount()) return broken(u"its record lies beyond the end of the file");
    const Page& page = At(record.page);
    if (page[0] != static_cast<std::uint8_t>(PageType::Data)) {
        return broken(u"its record is not on a data page");
    }
    if (U32(&page[4]) != (record.page == 1 ? 1u : 0u)) return broken(u"its record is not on a map page");
    const std::optional<Slot> slot = SlotAt(page, record.slot);
    if (!slot) return broken(u"its record does not exist");
    if (slot->flags != 0) return broken(u"its record is deleted or moved");
    if (slot->record.size() < kInlineHead || slot->record[0] > 1) return broken(u"its record is not a map");
    if (!maps_.insert(record).second) {
        Error(5, place + u"its record serves as another map too");
        return std::nullopt;
    }
    if (record.page != 1 && !Claim(record.page, kMapPages)) return std::nullopt;
    return slot->record;
}

void CheckContext::CollectBits(const MapBits& map, TextView purpose, std::vector<PageNumber>& pages) {
    std::uint64_t beyond = 0;  // the last page beyond the end
    const auto count = static_cast<PageNumber>(map.bits.size() * 8);
    for (PageNumber at = FindBit(map.bits.data(), 0, count); at < count;
         at = FindBit(map.bits.data(), at + 1, count)) {
        const std::uint64_t page = std::uint64_t{map.first} + at;
        if (page < PageCount()) {
            pages.push_back(static_cast<PageNumber>(page));
        } else {
            beyond = page;
        }
    }
    if (beyond != 0) {
        Error(7, Text(purpose) + u" holds pages beyond the end of the file, up to " +
                     Digits(static_cast<long long>(beyond)));
    }
}

std::optional<std::vector<CheckContext::MapBits>> CheckContext::ReadBits(Pointer record, TextView purpose) {
    const std::optional<Bytes> map = MapRecord(record, purpose);
    if (!map) return std::nullopt;
    if ((*map)[0] == 0) return std::vector{MapBits{U32(&(*map)[1]), map->subspan(kInlineHead)}};
    const Owner owner = NewOwner(Text(u"the bitmap of ") + Text(purpose));
    std::vector<MapBits> all;
    bool whole = true;
    for (std::size_t entry = 0; 1 + 4 * (entry + 1) <= map->size(); ++entry) {
        const PageNumber number = U32(&(*map)[1 + 4 * entry]);
        if (number == 0) continue;
        if (!Claim(number, owner)) {
            whole = false;
            continue;
        }
        const Page& page = At(number);
        if (page[0] != static_cast<std::uint8_t>(PageType::UsageBitmap)) {
            Error(4, Place(purpose, number) + u"its bitmap page is of another type");
            whole = false;
            continue;
        }
        if (page[1] != 1) Error(31, Place(purpose, number) + u"byte 1 is not 1");
        all.push_back(
            {static_cast<PageNumber>(entry) * kPagesPerBitmap, Bytes(page).subspan(kBitmapHead), number});
    }
    if (!whole) return std::nullopt;
    return all;
}

std::optional<std::vector<PageNumber>> CheckContext::ReadMap(Pointer record, TextView purpose) {
    const std::optional<std::vector<MapBits>> all = ReadBits(record, purpose);
    if (!all) return std::nullopt;
    std::vector<PageNumber> pages;
    for (const MapBits& bits : *all) CollectBits(bits, purpose, pages);
    return pages;
}

std::vector<PageNumber> CheckContext::ClaimMap(Pointer record, TextView purpose, Owner owner) {
    std::vector<PageNumber> claimed;
    const std::optional<std::vector<PageNumber>> pages = ReadMap(record, purpose);
    if (!pages) return claimed;
    for (const PageNumber page : *pages) {
        if (Claim(page, owner)) claimed.push_back(page);
    }
    return claimed;
}

Text Place(TextView what, PageNumber page) {
    return Text(what) + u", page " + Digits(page) + u": ";
}

Text Place(TextView what, Pointer slot) {
    return Text(what) + u", page " + Digits(slot.page) + u", slot " + Digits(slot.slot) + u": ";
}

}  // namespace tav::jet::check
