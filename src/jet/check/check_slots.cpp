#include "jet/check/check_slots.h"

#include <algorithm>

#include "jet/file/data_page.h"

namespace tav::jet::check {
namespace {

// A page with so much free space should be in the map of those with room.
constexpr std::size_t kRoom = kPageSize / 4;

}  // namespace

void CheckByteOne(CheckContext& context, PageNumber number, TextView what) {
    if (context.At(number)[1] != 1) context.Error(31, Place(what, number) + u"byte 1 is not 1");
}

void CheckZeros(CheckContext& context, PageNumber number, TextView what) {
    if (U32(&context.At(number)[8]) != 0) {
        context.Error(31, Place(what, number) + u"the bytes 8 to 11 are not 0");
    }
}

bool CheckDataPage(CheckContext& context, PageNumber number, std::uint32_t owner, TextView what) {
    const Page& page = context.At(number);
    const auto error = [&](TextView text) { context.Error(14, Place(what, number) + Text(text)); };
    if (page[0] != static_cast<std::uint8_t>(PageType::Data)) {
        error(u"it is not a data page");
        return false;
    }
    CheckByteOne(context, number, what);
    // On pages of long values the bytes 8 to 11 hold something else.
    if (owner != kLongValueOwner) CheckZeros(context, number, what);
    if (U32(&page[4]) != owner) {
        error(u"its owner field names somebody else");
        return false;
    }
    const std::size_t slots = U16(&page[12]);
    if (slots > kMaximumSlots) {
        error(u"it has more than 255 slots");
        return false;
    }
    std::size_t last = kPageSize;
    for (std::size_t slot = 0; slot < slots; ++slot) {
        const std::uint16_t word = U16(&page[kDataHeader + 2 * slot]);
        const std::size_t start = word & 0x1FFF;
        if ((word & 0x2000) != 0)
            error(u"slot " + Digits(static_cast<long long>(slot)) + u" has an unknown flag");
        if (start > last)
            error(u"slot " + Digits(static_cast<long long>(slot)) + u" begins after its neighbour");
        last = std::min(start, last);
    }
    const std::size_t table_end = kDataHeader + 2 * slots;
    if (last < table_end) {
        error(u"a record overlaps the slots");
    } else if (U16(&page[2]) != last - table_end) {
        error(u"its free field is not exact");
    }
    return true;
}

void CheckFreeMap(CheckContext& context, Pointer map, const std::vector<PageNumber>& owned, TextView what) {
    const Text name = u"the free map of " + Text(what);
    const std::optional<std::vector<PageNumber>> free = context.ReadMap(map, name);
    if (!free) return;
    for (const PageNumber page : *free) {
        if (!std::ranges::binary_search(owned, page)) {
            context.Error(13, Place(name, page) + u"the page is not one of the owned ones");
        }
    }
    long long unlisted = 0;
    for (const PageNumber page : owned) {
        context.Trim();
        if (U16(&context.At(page)[2]) >= kRoom && !std::ranges::binary_search(*free, page)) ++unlisted;
    }
    if (unlisted != 0) context.Note(13, name + u": it lacks " + Digits(unlisted) + u" pages with room");
}

}  // namespace tav::jet::check
