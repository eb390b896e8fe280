#include "jet/file/usage_map.h"

#include <algorithm>

#include "jet/file/bitmap.h"
#include "jet/file/data_page.h"
#include "jet/file/page_file.h"

namespace tav::jet {
namespace {

constexpr PageNumber kGlobalPage = 1;
constexpr std::size_t kInlineBits = 5;  // offset of an inline map's bitmap
constexpr std::size_t kBitmapAt = 4;    // offset of the bits in a bitmap page
constexpr PageNumber kPagesPerBitmap = (kPageSize - kBitmapAt) * 8;

// Where a map's record lies, checked against its page.
Record MapRecord(PageFile& file, Pointer at) {
    const Page& page = ReadDataPage(file, at.page, at.page == kGlobalPage ? kGlobalPage : 0);
    const Record record = RecordAt(file, at.page, page, at.slot);
    const std::uint8_t* bytes = page.data() + record.begin;
    if (record.flags != 0 || record.size < kInlineBits || bytes[0] > 1) {
        file.Damaged(at.page, Text(u"slot ").append(Digits(at.slot)).append(u" holds no usage map"));
    }
    if (bytes[0] == 0 && U32(bytes + 1) % 8 != 0) {
        file.Damaged(at.page,
                     Text(u"the usage map of slot ").append(Digits(at.slot)).append(u" starts wrong"));
    }
    return record;
}

}  // namespace

// A map's record as it stands at the moment.
struct UsageMap::View {
    PageFile& file;
    Pointer at;
    Record record;

    View(PageFile& in, Pointer pointer) : file(in), at(pointer), record(MapRecord(in, pointer)) {}

    const std::uint8_t* bytes() const { return file.Read(at.page).data() + record.begin; }
    std::uint8_t* Change() const { return file.Change(at.page).data() + record.begin; }
    bool IsInline() const { return bytes()[0] == 0; }

    PageNumber start() const { return U32(bytes() + 1); }
    PageNumber bits() const { return static_cast<PageNumber>(record.size - kInlineBits) * 8; }
    bool Covers(PageNumber page) const { return page >= start() && page - start() < bits(); }

    PageNumber entries() const { return static_cast<PageNumber>(record.size - 1) / 4; }
    PageNumber bitmap(PageNumber entry) const { return entry < entries() ? U32(bytes() + 1 + 4 * entry) : 0; }
    const std::uint8_t* BitmapBits(PageNumber bitmap_page) const {
        const Page& page = file.Read(bitmap_page);
        if (page[0] != static_cast<std::uint8_t>(PageType::UsageBitmap) || page[1] != 1) {
            file.Damaged(bitmap_page, u"a usage bitmap is expected here");
        }
        return page.data() + kBitmapAt;
    }

    // Calls take(page) for the set's pages, ascending.
    template <class Take>
    void ForEach(Take take) const {
        const auto walk = [&](const std::uint8_t* bits, PageNumber first, PageNumber count) {
            for (PageNumber at_bit = FindBit(bits, 0, count); at_bit < count;
                 at_bit = FindBit(bits, at_bit + 1, count)) {
                const PageNumber page = first + at_bit;
                if (page < first || page >= file.PageCount()) {
                    file.Damaged(at.page, Text(u"the usage map of slot ")
                                              .append(Digits(at.slot))
                                              .append(u" lists a page beyond the end of the file"));
                }
                take(page);
            }
        };
        if (IsInline()) return walk(bytes() + kInlineBits, start(), bits());
        for (PageNumber entry = 0; entry < entries(); ++entry) {
            const PageNumber page = bitmap(entry);
            if (page != 0) walk(BitmapBits(page), entry * kPagesPerBitmap, kPagesPerBitmap);
        }
    }
};

bool UsageMap::Contains(PageNumber page) const {
    const View map(*file_, record_);
    if (map.IsInline()) return map.Covers(page) && Bit(map.bytes() + kInlineBits, page - map.start());
    const PageNumber bitmap = map.bitmap(page / kPagesPerBitmap);
    return bitmap != 0 && Bit(map.BitmapBits(bitmap), page % kPagesPerBitmap);
}

void UsageMap::Add(PageNumber page) {
    const View map(*file_, record_);
    if (!map.IsInline()) return AddToBitmap(page);
    if (!map.Covers(page) && !MoveWindow(page)) {
        TurnIntoReferences();
        return AddToBitmap(page);
    }
    SetBit(map.Change() + kInlineBits, page - map.start(), true);
}

// Starts the inline bitmap at another page so that it covers its set and `page`; false when it is too short.
bool UsageMap::MoveWindow(PageNumber page) {
    const View map(*file_, record_);
    const std::vector<PageNumber> pages = Pages();
    const PageNumber first = pages.empty() ? page : std::min(page, pages.front());
    const PageNumber last = pages.empty() ? page : std::max(page, pages.back());
    const PageNumber start = first / 8 * 8;
    if (last - start >= map.bits()) return false;
    std::uint8_t* bytes = map.Change();
    std::fill_n(bytes + kInlineBits, map.bits() / 8, std::uint8_t{0});
    PutU32(bytes + 1, start);
    for (const PageNumber member : pages) SetBit(bytes + kInlineBits, member - start, true);
    return true;
}

void UsageMap::TurnIntoReferences() {
    const View map(*file_, record_);
    const std::vector<PageNumber> pages = Pages();
    std::uint8_t* bytes = map.Change();
    std::fill_n(bytes, map.record.size, std::uint8_t{0});
    bytes[0] = 1;
    for (const PageNumber page : pages) AddToBitmap(page);
}

void UsageMap::AddToBitmap(PageNumber page) {
    const View map(*file_, record_);
    const PageNumber entry = page / kPagesPerBitmap;
    if (entry >= map.entries()) {
        file_->Damaged(record_.page, u"a usage map is too short for the file");
    }
    PageNumber bitmap = map.bitmap(entry);
    if (bitmap == 0) {
        bitmap = AllocatePage(*file_);
        Page& fresh = file_->Change(bitmap);
        fresh[0] = static_cast<std::uint8_t>(PageType::UsageBitmap);
        fresh[1] = 1;
        PutU32(map.Change() + 1 + 4 * entry, bitmap);
    }
    map.BitmapBits(bitmap);
    SetBit(file_->Change(bitmap).data() + kBitmapAt, page % kPagesPerBitmap, true);
}

PageNumber UsageMap::TakePage(PageNumber above) {
    const PageNumber page = AllocatePage(*file_, above, this);
    Add(page);
    return page;
}

void UsageMap::Remove(PageNumber page) {
    if (!Contains(page)) return;
    const View map(*file_, record_);
    if (map.IsInline()) return SetBit(map.Change() + kInlineBits, page - map.start(), false);
    const PageNumber bitmap = map.bitmap(page / kPagesPerBitmap);
    SetBit(file_->Change(bitmap).data() + kBitmapAt, page % kPagesPerBitmap, false);
}

std::vector<PageNumber> UsageMap::Pages() const {
    std::vector<PageNumber> pages;
    View(*file_, record_).ForEach([&](PageNumber page) { pages.push_back(page); });
    return pages;
}

PageNumber UsageMap::Last() const {
    PageNumber last = 0;
    View(*file_, record_).ForEach([&](PageNumber page) { last = page; });
    return last;
}

std::vector<PageNumber> UsageMap::BitmapPages() const {
    const View map(*file_, record_);
    std::vector<PageNumber> pages;
    if (map.IsInline()) return pages;
    for (PageNumber entry = 0; entry < map.entries(); ++entry) {
        if (map.bitmap(entry) != 0) pages.push_back(map.bitmap(entry));
    }
    return pages;
}

}  // namespace tav::jet
