#include "jet/file/data_page.h"

#include <algorithm>

#include "common/concat.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr std::size_t kFreeAt = 2;
constexpr std::size_t kSlotCountAt = 12;
constexpr std::size_t kSlotsAt = 14;
constexpr std::uint16_t kStartMask = 0x1FFF;

std::uint8_t* SlotAt(Page& page, unsigned slot) {
    return page.data() + kSlotsAt + 2 * slot;
}
const std::uint8_t* SlotAt(const Page& page, unsigned slot) {
    return page.data() + kSlotsAt + 2 * slot;
}
std::uint16_t StartOf(const Page& page, unsigned slot) {
    return U16(SlotAt(page, slot)) & kStartMask;
}
// Where the record of a slot ends: at the one before, or at the page's end.
std::uint16_t EndOf(const Page& page, unsigned slot) {
    return slot == 0 ? static_cast<std::uint16_t>(kPageSize) : StartOf(page, slot - 1);
}
void SetFree(Page& page) {
    const unsigned count = SlotCount(page);
    PutU16(page.data() + kFreeAt, static_cast<std::uint16_t>(EndOf(page, count) - kSlotsAt - 2 * count));
}

}  // namespace

const Page& ReadDataPage(PageFile& file, PageNumber number, std::uint32_t owner) {
    const Page& page = file.Read(number);
    if (page[0] != static_cast<std::uint8_t>(PageType::Data) || page[1] != 1) {
        file.Damaged(number, u"a data page is expected here");
    }
    if (DataPageOwner(page) != owner) file.Damaged(number, u"the page belongs to something else");
    if (SlotCount(page) > kMaximumSlots) file.Damaged(number, u"it has too many slots");
    return page;
}

void InitializeDataPage(Page& page, std::uint32_t owner) {
    page.fill(0);
    page[0] = static_cast<std::uint8_t>(PageType::Data);
    page[1] = 1;
    PutU32(page.data() + 4, owner);
    SetFree(page);
}

Record RecordAt(const PageFile& file, PageNumber number, const Page& page, unsigned slot) {
    const unsigned count = SlotCount(page);
    if (slot >= count) file.Damaged(number, Concat(u"it has no slot ", Digits(slot)));
    const std::uint16_t word = U16(SlotAt(page, slot));
    const std::uint16_t begin = word & kStartMask;
    const std::uint16_t end = EndOf(page, slot);
    if ((word & 0x2000) != 0 || begin > end || end > kPageSize || begin < kSlotsAt + 2 * count) {
        file.Damaged(number, Concat(u"slot ", Digits(slot), u" is out of its place"));
    }
    return {begin, static_cast<std::uint16_t>(end - begin), static_cast<std::uint16_t>(word & kSlotDeleted)};
}

std::uint16_t FreeBytes(const PageFile& file, PageNumber number, const Page& page) {
    const unsigned count = SlotCount(page);
    const std::uint16_t end =
        count == 0 ? static_cast<std::uint16_t>(kPageSize) : RecordAt(file, number, page, count - 1).begin;
    return static_cast<std::uint16_t>(end - kSlotsAt - 2 * count);
}

void CheckSlots(const PageFile& file, PageNumber number, const Page& page) {
    for (unsigned slot = 0; slot < SlotCount(page); ++slot) RecordAt(file, number, page, slot);
}

void SetSlotFlags(Page& page, unsigned slot, std::uint16_t flags) {
    PutU16(SlotAt(page, slot), static_cast<std::uint16_t>(StartOf(page, slot) | flags));
}

std::uint8_t AddRecord(Page& page, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
    const unsigned slot = SlotCount(page);
    const auto begin = static_cast<std::uint16_t>(EndOf(page, slot) - bytes.size());
    std::copy(bytes.begin(), bytes.end(), page.begin() + begin);
    PutU16(SlotAt(page, slot), static_cast<std::uint16_t>(begin | flags));
    PutU16(page.data() + kSlotCountAt, static_cast<std::uint16_t>(slot + 1));
    SetFree(page);
    return static_cast<std::uint8_t>(slot);
}

void ResizeRecord(Page& page, unsigned slot, std::uint16_t size) {
    const unsigned count = SlotCount(page);
    const std::uint16_t old_begin = StartOf(page, slot);
    const std::uint16_t last_begin = StartOf(page, count - 1);
    const auto old_size = static_cast<std::uint16_t>(EndOf(page, slot) - old_begin);
    const int shift = old_size - size;  // up the page when the record shrinks
    const std::size_t moved = old_begin - last_begin + std::min(size, old_size);
    std::memmove(page.data() + last_begin + shift, page.data() + last_begin, moved);
    for (unsigned later = slot; later < count; ++later) {
        const std::uint16_t word = U16(SlotAt(page, later));
        PutU16(SlotAt(page, later), static_cast<std::uint16_t>(word + shift));
    }
    SetFree(page);
}

}  // namespace tav::jet
