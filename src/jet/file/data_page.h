// The pages that hold records: table rows, long values, usage maps.
//
//     +0   01 01         type
//     +2   u16           free bytes: start of the last record - 14 - 2 x slots
//     +4   u32           owner: page of the table's definition, kLongValueOwner, or 0 (1 on page 1) for maps
//     +12  u16           slot count, at most 255, deleted ones included
//     +14  u16 x count   slots: start of the record, and two flags
//
// Records are stacked from the end of the page downwards in slot order, so a record ends where the one of the
// slot before begins. A slot is never removed: it delimits its neighbour, and its number is part of row ids.
#pragma once

#include <span>

#include "jet/file/format.h"

namespace tav::jet {

class PageFile;

inline constexpr std::uint16_t kSlotMoved = 0x4000;  // the record's first 4 bytes point to the row's body
inline constexpr std::uint16_t kSlotBody = 0x8000;  // the body of a moved row, found through its pointer only
inline constexpr std::uint16_t kSlotDeleted = 0xC000;         // both
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
inline constexpr unsigned kMaximumSlots = 255;

struct Record {
    std::uint16_t begin = 0;  // in the page
    std::uint16_t size = 0;
    std::uint16_t flags = 0;  // kSlotMoved, kSlotBody, kSlotDeleted, or 0: a live row

    bool IsDeleted() const { return flags == kSlotDeleted; }
};

// The page, if it is a data page of that owner; else it is damaged.
const Page& ReadDataPage(PageFile& file, PageNumber number, std::uint32_t owner);

void InitializeDataPage(Page& page, std::uint32_t owner);

inline std::uint32_t DataPageOwner(const Page& page) {
    return U32(page.data() + 4);
}
// Slots of a page that ReadDataPage returned.
inline unsigned SlotCount(const Page& page) {
    return U16(page.data() + 12);
}

// The record of a slot. A slot that is not there, or lies outside the page or over its neighbour, is damage.
Record RecordAt(const PageFile& file, PageNumber number, const Page& page, unsigned slot);

// Bytes between the slot table and the last record.
std::uint16_t FreeBytes(const PageFile& file, PageNumber number, const Page& page);

// Every slot of the page, checked. Whoever moves records calls this first.
void CheckSlots(const PageFile& file, PageNumber number, const Page& page);

void SetSlotFlags(Page& page, unsigned slot, std::uint16_t flags);

// Adds a record below the last one; its slot. The caller knows that record and slot fit.
std::uint8_t AddRecord(Page& page, std::span<const std::uint8_t> bytes, std::uint16_t flags);

// Gives a record another length, moving the records of all later slots. Its first bytes stay (as many as
// fit), bytes gained at its end are undefined. The caller knows that the gain fits and the slots are sound.
void ResizeRecord(Page& page, unsigned slot, std::uint16_t size);

}  // namespace tav::jet
