#include "jet/check/check_file.h"

#include <algorithm>
#include <cmath>

#include "jet/check/check_slots.h"
#include "jet/file/header_mask.h"
#include "jet/schema/system_tables.h"

namespace tav::jet::check {
namespace {

constexpr std::size_t kPassword = 0x42;
constexpr std::size_t kPasswordSize = 40;
constexpr std::size_t kCreated = 0x72;
constexpr std::uint32_t kPointers[] = {0x100, 0x101, 2, 3, 4, 5};
constexpr PageNumber kGlobalMap = 1;
constexpr std::size_t kMapHeader = 5;

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

}  // namespace

void CheckHeader(CheckContext& context) {
    Page page = context.At(0);
    MaskHeader(page.data());
    const auto error = [&](TextView text) { context.Error(2, u"page 0: " + Text(text)); };
    for (std::size_t i = 0; i < std::size(kPointers); ++i) {
        if (U32(&page[kMaskedBegin + 4 * i]) != kPointers[i]) error(u"a pointer to a system page is wrong");
    }
    const double created = DoubleAt(&page[kCreated]);
    if (!std::isfinite(created)) return error(u"the creation date is not a number");
    std::uint8_t day[4];
    PutU32(day, static_cast<std::uint32_t>(static_cast<std::int64_t>(std::trunc(created))));
    for (std::size_t i = 0; i < kPasswordSize; ++i) {
        if (page[kPassword + i] != day[i % 4]) return error(u"the password field is neither empty nor text");
    }
    if (IsOwnFile(page)) context.SetOwnFile();
}

void CheckGlobalMap(CheckContext& context) {
    context.Claim(0, context.NewOwner(u"the header"));
    context.Claim(kGlobalMap, context.NewOwner(u"the global map"));
    const auto error = [&](TextView text) { context.Error(3, u"page 1: " + Text(text)); };
    const Page& page = context.At(kGlobalMap);
    if (page[0] != static_cast<std::uint8_t>(PageType::Data) || U32(&page[4]) != 1 || U16(&page[12]) != 2) {
        return error(u"it is not the page of the global map");
    }
    CheckDataPage(context, kGlobalMap, 1, u"the global map");
    const std::optional<Slot> slot = SlotAt(page, 0);
    if (!slot || slot->flags != 0 || slot->record.size() < kMapHeader || slot->record[0] != 0 ||
        U32(&slot->record[1]) != 0) {
        return error(u"the global map is not an inline map from page 0 on");
    }
    const Bytes bits = slot->record.subspan(kMapHeader);
    if (bits.size() * 8 < context.PageCount()) return error(u"the global map does not cover the file");
    std::vector<bool> free(context.PageCount());
    for (std::size_t i = 0; i < free.size(); ++i) free[i] = (bits[i / 8] >> i % 8 & 1) != 0;
    long long used_beyond = 0;
    for (std::size_t i = free.size(); i < bits.size() * 8; ++i)
        used_beyond += (bits[i / 8] >> i % 8 & 1) == 0;
    if (used_beyond != 0) {
        context.Note(6,
                     u"the global map: " + Digits(used_beyond) + u" pages beyond the end are marked in use");
    }
    context.SetFree(std::move(free));
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
