#include "jet/table/long_value.h"

#include "jet/file/data_page.h"
#include "jet/file/page_file.h"
#include "jet/table/record_space.h"

namespace tav::jet {
namespace {

enum Kind : std::uint32_t { Chain = 0, OneRecord = 1, Inline = 2 };

constexpr std::size_t kRecord = 4076;  // bytes of the longest one
constexpr std::size_t kNextPointer = 4;

std::span<const std::uint8_t> RecordBytes(PageFile& file, Pointer at) {
    const Page& page = ReadDataPage(file, at.page, kLongValueOwner);
    const Record record = RecordAt(file, at.page, page, at.slot);
    if (record.flags != 0) file.Damaged(at.page, u"a long value points to a deleted record");
    return {page.data() + record.begin, record.size};
}

void Append(std::string& out, std::span<const std::uint8_t> bytes) {
    out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void AppendWord(std::string& out, std::uint32_t word) {
    std::uint8_t bytes[4];
    PutU32(bytes, word);
    Append(out, bytes);
}

std::string Head(std::size_t length, Kind kind, Pointer first) {
    std::string head;
    AppendWord(head, static_cast<std::uint32_t>(length) | std::uint32_t{kind} << 30);
    AppendWord(head, first.Word());
    AppendWord(head, 0);
    return head;
}

// Follows a chain; false when it does not end where the value does, as one that leads in a circle.
bool ReadChain(PageFile& file, Pointer next, std::size_t length, LongValue& value) {
    while (next != Pointer{} && value.data.size() < length) {
        const std::span<const std::uint8_t> record = RecordBytes(file, next);
        if (record.size() <= kNextPointer) file.Damaged(next.page, u"a piece of a long value is empty");
        value.records.push_back(next);
        Append(value.data, record.subspan(kNextPointer));
        next = Pointer::FromWord(U32(record.data()));
    }
    return next == Pointer{};
}

}  // namespace

Text ReadLongValue(PageFile& file, std::span<const std::uint8_t> stored, LongValue& value) {
    value = {};
    if (stored.empty()) return {};
    if (stored.size() < kLongValueHead) return u"has a long value without a head";
    const std::size_t length = U32(stored.data()) & kLongestValue;
    if (length > static_cast<std::uint64_t>(file.PageCount()) * kPageSize) {
        return u"has a long value that is longer than the file";
    }
    const Pointer first = Pointer::FromWord(U32(stored.data() + 4));
    switch (U32(stored.data()) >> 30) {
        case Inline:
            Append(value.data, stored.subspan(kLongValueHead));
            break;
        case OneRecord:
            value.records = {first};
            Append(value.data, RecordBytes(file, first));
            break;
        case Chain:
            if (ReadChain(file, first, length, value)) break;
            return u"has a long value whose records lead in a circle or beyond its length";
        default:
            return u"has a long value of an unknown kind";
    }
    return value.data.size() == length ? Text()
                                       : Text(u"has a long value of another length than its records");
}

void AppendInlineValue(std::string& out, std::string_view data) {
    out.append(Head(data.size(), Inline, {})).append(data);
}

std::string WriteLongValue(PageFile& file, RecordSpace& space, std::string_view data) {
    if (data.size() <= kRecord) return Head(data.size(), OneRecord, space.Add(data, 0));
    Pointer first;
    Pointer last;
    for (std::size_t at = 0; at < data.size();) {
        const std::string_view piece = data.substr(at, kRecord - kNextPointer);
        at += piece.size();
        const Pointer record = space.Add(std::string(kNextPointer, '\0').append(piece), 0);
        if (first == Pointer{}) {
            first = record;
        } else {
            Page& page = file.Change(last.page);
            PutU32(page.data() + RecordAt(file, last.page, page, last.slot).begin, record.Word());
        }
        last = record;
    }
    return Head(data.size(), Chain, first);
}

}  // namespace tav::jet
