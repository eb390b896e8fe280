#include "jet/check/check_file.h"

#include <algorithm>
#include <cmath>

#include "jet/check/check_slots.h"
#include "jet/file/bitmap.h"
#include "jet/file/data_page.h"
#include "jet/file/header.h"
#include "jet/file/header_mask.h"
#include "jet/file/map_record.h"
#include "jet/schema/system_tables.h"

namespace tav::jet::check {
namespace {

constexpr std::size_t kCreated = 0x72;
constexpr std::size_t kSystemTablesAt = 0x20;  // four page numbers, the first of them 2

// Whether this program made the file and the database engine, which counts its uses up, has not used it.
bool IsOwnFile(const Page& unmasked) {
    const bool own_date =
        std::equal(kCreationDate.begin(), kCreationDate.end(), &unmasked[kCreated],
                   [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    bool unused = U16(&unmasked[kUseCounters]) == kFirstUseCounter;
    for (std::size_t i = kUseCounters + 2; i < kPageSize; i += 2) {
        unused = unused && U16(&unmasked[i]) == kIdleUseCounter;
    }
    return own_date && unused;
}

// The two maps that the header points to, and nothing else, stand on page 1.
bool CheckPageOne(CheckContext& context, const GlobalMapPointers& maps) {
    const auto error = [&](TextView text) {
        context.Error(3, u"page 1: " + Text(text));
        return false;
    };
    const Page& page = context.At(kGlobalPage);
    if (page[0] != static_cast<std::uint8_t>(PageType::Data) || U32(&page[4]) != 1) {
        return error(u"it is not the page of the global maps");
    }
    CheckDataPage(context, kGlobalPage, 1, u"the global maps");
    for (std::size_t i = 0; i < SlotCount(page); ++i) {
        const std::optional<Slot> slot = SlotAt(page, i);
        if (i != maps.free.slot && i != maps.released.slot) {
            if (!slot || slot->flags != kSlotDeleted) return error(u"it holds another record");
        } else if (slot && !slot->record.empty() && slot->record[0] == 1 &&
                   slot->record.size() != kReferenceSize) {
            return error(u"a reference map has another length than 69 bytes");
        } else if (slot && slot->record.size() < kReferenceSize) {
            context.Note(3, u"page 1: a global map is shorter than 69 bytes");
        }
    }
    return true;
}

// What the map of free pages says about each page of the file.
void TakeFreePages(CheckContext& context, const std::vector<CheckContext::MapBits>& map) {
    std::vector<bool> free(context.PageCount());
    PageNumber covered = 0;
    long long used_beyond = 0;
    for (const CheckContext::MapBits& bits : map) {
        for (PageNumber i = 0; i < bits.bits.size() * 8; ++i) {
            const std::uint64_t page = std::uint64_t{bits.first} + i;
            const bool is_free = Bit(bits.bits.data(), i);
            if (page < free.size()) {
                free[page] = is_free;
                ++covered;
            } else if (!is_free) {
                ++used_beyond;
            }
        }
    }
    context.SetFree(std::move(free));
    if (used_beyond != 0) {
        context.Note(6,
                     u"the global map: " + Digits(used_beyond) + u" pages beyond the end are marked in use");
    }
    if (covered != context.PageCount()) {
        context.Note(3, u"the global map: it does not cover " + Digits(context.PageCount() - covered) +
                            u" pages, which other programs may take for free");
    }
    for (const CheckContext::MapBits& bits : map) {
        if (bits.bitmap != 0 && context.IsFree(bits.bitmap)) {
            context.Error(6, Place(u"the global map", bits.bitmap) + u"its own bitmap page is called free");
        }
    }
}

}  // namespace

void CheckHeader(CheckContext& context) {
    const GlobalMapPointers maps = FindGlobalMaps(context.At(0).data());
    Page page = context.At(0);
    MaskHeader(page.data());
    const auto error = [&](TextView text) { context.Error(2, u"page 0: " + Text(text)); };
    if (maps.free.page != kGlobalPage || maps.released.page != kGlobalPage || maps.free == maps.released) {
        error(u"a pointer to a global map is wrong");
    }
    for (std::uint32_t i = 0; i < kSystemTables; ++i) {
        if (U32(&page[kSystemTablesAt + 4 * i]) != 2 + i) error(u"a pointer to a system page is wrong");
    }
    const double created = DoubleAt(&page[kCreated]);
    if (!std::isfinite(created)) return error(u"the creation date is not a number");
    if (IsOwnFile(page)) context.SetOwnFile();
}

void CheckGlobalMap(CheckContext& context) {
    context.Claim(0, context.NewOwner(u"the header"));
    context.Claim(kGlobalPage, context.NewOwner(u"the global map"));
    const GlobalMapPointers maps = FindGlobalMaps(context.At(0).data());
    if (!CheckPageOne(context, maps)) return;
    const auto free = context.ReadBits(maps.free, u"the global map");
    if (free) TakeFreePages(context, *free);
    const auto released = context.ReadBits(maps.released, u"the map of released pages");
    if (!released) return;
    const auto is_set = [](std::uint8_t byte) { return byte != 0; };
    for (const CheckContext::MapBits& bits : *released) {
        if (!std::ranges::any_of(bits.bits, is_set)) continue;
        return context.Note(6, u"pages are kept for a session of another program that has not ended");
    }
}

void CheckLeftovers(CheckContext& context) {
    long long leaked = 0;
    for (PageNumber page = 0; page < context.PageCount(); ++page) {
        if (context.OwnerOf(page) == CheckContext::kMapPages) {
            context.Trim();
            CheckDataPage(context, page, 0, context.NameOf(CheckContext::kMapPages));
        }
        leaked += context.OwnerOf(page) == CheckContext::kNobody && !context.IsFree(page);
    }
    if (leaked != 0) context.Note(6, Digits(leaked) + u" pages are neither owned nor free");
}

}  // namespace tav::jet::check
