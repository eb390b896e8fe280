#include "jet/table/long_value.h"

#include "jet/file/data_page.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr std::size_t kHead = 12;
constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
enum Kind : std::uint32_t { Chain = 0, OneRecord = 1, Inline = 2 };

std::span<const std::uint8_t> RecordBytes(PageFile& file, Pointer at) {
    const Page& page = ReadDataPage(file, at.page, kLongValueOwner);
    const Record record = RecordAt(file, at.page, page, at.slot);
    if (record.flags != 0) file.Damaged(at.page, u"a long value points to a deleted record");
    return {page.data() + record.begin, record.size};
}

void Append(std::string& out, std::span<const std::uint8_t> bytes) {
    out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

}  // namespace

std::string ReadLongValue(PageFile& file, PageNumber at, std::span<const std::uint8_t> stored) {
    std::string data;
    if (stored.empty()) return data;
    if (stored.size() < kHead) file.Damaged(at, u"a long value has no head");
    const std::uint32_t length = U32(stored.data()) & kLengthMask;
    if (length > static_cast<std::uint64_t>(file.PageCount()) * kPageSize) {
        file.Damaged(at, u"a long value is longer than the file");
    }
    Pointer next = Pointer::FromWord(U32(stored.data() + 4));
    switch (U32(stored.data()) >> 30) {
        case Inline:
            Append(data, stored.subspan(kHead));
            break;
        case OneRecord:
            Append(data, RecordBytes(file, next));
            break;
        case Chain:
            while (next != Pointer{} && data.size() < length) {
                const std::span<const std::uint8_t> record = RecordBytes(file, next);
                if (record.size() <= 4) file.Damaged(next.page, u"a piece of a long value is empty");
                Append(data, record.subspan(4));
                next = Pointer::FromWord(U32(record.data()));
            }
            break;
        default:
            file.Damaged(at, u"a long value is of an unknown kind");
    }
    if (data.size() != length) file.Damaged(at, u"a long value does not have its length");
    return data;
}

bool IsInlineValue(std::span<const std::uint8_t> stored) {
    return stored.size() < kHead || U32(stored.data()) >> 30 == Inline;
}

void AppendInlineValue(std::string& out, std::string_view data) {
    std::uint8_t head[kHead] = {};
    PutU32(head, static_cast<std::uint32_t>(data.size()) | std::uint32_t{Inline} << 30);
    Append(out, head);
    out += data;
}

}  // namespace tav::jet
