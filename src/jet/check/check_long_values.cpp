#include "jet/check/check_long_values.h"

#include "jet/check/check_slots.h"
#include "jet/file/data_page.h"

namespace tav::jet::check {
namespace {

constexpr std::size_t kHead = 12;
constexpr std::size_t kNextPointer = 4;
constexpr std::uint32_t kLengthBits = 0x3FFFFFFF;

enum Kind : std::uint32_t { kChain = 0, kOneRecord = 1, kInline = 2 };

}  // namespace

LongValueCheck::LongValueCheck(CheckContext& context, const CheckedTable& table) : context_(context) {
    for (const LongValueMaps& maps : table.definition.long_values) {
        const Text name = table.place + u", long values of column " + Digits(maps.column_number);
        const CheckContext::Owner owner = context.NewOwner(name);
        std::vector<PageNumber> pages = context.ClaimMap(maps.owned, u"the map of " + name, owner);
        if (maps.free != Pointer{}) CheckFreeMap(context, maps.free, pages, name);
        for (const PageNumber page : pages) {
            context.Trim();
            CheckDataPage(context, page, kLongValueOwner, name);
        }
        records_.insert_or_assign(maps.column_number, SlotSet(std::move(pages)));
    }
}

// Follows the records; `data` becomes the beginning of the value's data.
Text LongValueCheck::CheckRecords(SlotSet& records, Pointer first, std::size_t length, bool chain,
                                  Bytes& data) {
    std::size_t found = 0;
    for (Pointer next = first; next != Pointer{};) {
        if (!records.HasPage(next.page)) return u"it leads to a page that holds no long values of the column";
        const std::optional<Slot> slot = SlotAt(context_.At(next.page), next.slot);
        if (!slot || slot->flags != 0) return u"it leads to a record that is not there";
        if (!records.Add(next)) return u"it leads to a record of another value";
        const std::size_t head = chain ? kNextPointer : 0;
        if (slot->record.size() < head) return u"a record is too short for its pointer";
        if (found == 0) data = slot->record.subspan(head);
        found += slot->record.size() - head;
        next = chain ? Pointer::FromWord(U32(slot->record.data())) : Pointer{};
    }
    return found == length ? Text() : Text(u"its length is not that of its records");
}

Text LongValueCheck::Check(const Column& column, Bytes value) {
    if (value.empty()) return {};
    if (value.size() < kHead) return u"the head of a long value is too short";
    const std::uint32_t word = U32(value.data());
    const std::size_t length = word & kLengthBits;
    const std::uint32_t kind = word >> 30;

    Bytes data = value.subspan(kHead);
    if (kind == kInline) {
        if (data.size() != length) return u"the length of an inline value is wrong";
    } else if (kind == kOneRecord || kind == kChain) {
        const auto records = records_.find(column.number);
        if (records == records_.end()) return u"a long value outside the row, but the column has no maps";
        const Pointer first = Pointer::FromWord(U32(&value[4]));
        const Text why = CheckRecords(records->second, first, length, kind == kChain, data);
        if (!why.empty()) return why;
    } else {
        return u"a long value of an unknown kind";
    }
    const bool compressed = data.size() >= 2 && data[0] == 0xFF && data[1] == 0xFE;
    if (column.type == ColumnType::Memo && !compressed && length % 2 != 0) {
        return u"the text ends in the middle of a character";
    }
    return {};
}

}  // namespace tav::jet::check
