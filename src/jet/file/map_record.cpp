#include "jet/file/map_record.h"

#include <algorithm>

#include "common/concat.h"
#include "jet/file/bitmap.h"
#include "jet/file/page_file.h"

namespace tav::jet {

MapRecord::MapRecord(PageFile& file, Pointer at) : file_(&file), at_(at) {
    const Page& page = ReadDataPage(file, at.page, at.page == kGlobalPage ? kGlobalPage : 0);
    record_ = RecordAt(file, at.page, page, at.slot);
    if (record_.flags != 0 || record_.size < kInlineHead || page[record_.begin] > 1) {
        file.Damaged(at.page, Concat(u"slot ", Digits(at.slot), u" holds no usage map"));
    }
}

const std::uint8_t* MapRecord::Bytes() const {
    return file_->Read(at_.page).data() + record_.begin;
}

std::uint8_t* MapRecord::Change() const {
    return file_->Change(at_.page).data() + record_.begin;
}

std::size_t MapRecord::SegmentCount() const {
    return IsInline() ? 1 : (record_.size - std::size_t{1}) / 4;
}

std::optional<MapSegment> MapRecord::Segment(std::size_t index) const {
    const std::uint8_t* bytes = Bytes();
    if (bytes[0] == 0) {
        const auto count = static_cast<PageNumber>(record_.size - kInlineHead) * 8;
        return MapSegment{U32(bytes + 1), count, at_.page, record_.begin + kInlineHead};
    }
    const PageNumber bitmap = U32(bytes + 1 + 4 * index);
    if (bitmap == 0) return std::nullopt;
    const Page& page = file_->Read(bitmap);
    if (page[0] != static_cast<std::uint8_t>(PageType::UsageBitmap) || page[1] != 1) {
        file_->Damaged(bitmap, u"a usage bitmap is expected here");
    }
    return MapSegment{static_cast<PageNumber>(index) * kPagesPerBitmap, kPagesPerBitmap, bitmap, kBitmapHead};
}

std::size_t MapRecord::IndexOf(PageNumber page) const {
    return IsInline() ? 0 : std::min<std::size_t>(page / kPagesPerBitmap, SegmentCount());
}

std::optional<MapSegment> MapRecord::SegmentOf(PageNumber page) const {
    const std::size_t index = IndexOf(page);
    if (index == SegmentCount()) return std::nullopt;
    const std::optional<MapSegment> segment = Segment(index);
    if (!segment || page < segment->first || page - segment->first >= segment->count) return std::nullopt;
    return segment;
}

const std::uint8_t* MapRecord::Bits(const MapSegment& segment) const {
    return file_->Read(segment.page).data() + segment.bits;
}

bool MapRecord::Contains(PageNumber page) const {
    const std::optional<MapSegment> segment = SegmentOf(page);
    return segment && Bit(Bits(*segment), page - segment->first);
}

void MapRecord::Set(PageNumber page, bool member) const {
    const MapSegment segment = SegmentOf(page).value();
    SetBit(file_->Change(segment.page).data() + segment.bits, page - segment.first, member);
}

bool MapRecord::Resize(std::uint16_t size, std::uint16_t spare) {
    const Page& page = file_->Read(at_.page);
    CheckSlots(*file_, at_.page, page);
    if (size > record_.size && size - record_.size + spare > FreeBytes(*file_, at_.page, page)) return false;
    if (size != record_.size) ResizeRecord(file_->Change(at_.page), at_.slot, size);
    *this = MapRecord(*file_, at_);
    return true;
}

void MapRecord::SetStart(PageNumber start) const {
    std::uint8_t* bytes = Change();
    bytes[0] = 0;
    PutU32(bytes + 1, start);
}

bool MapRecord::MakeReferences() {
    if (!Resize(kReferenceSize)) return false;
    std::uint8_t* bytes = Change();
    std::fill_n(bytes, kReferenceSize, std::uint8_t{0});
    bytes[0] = 1;
    return true;
}

void MapRecord::SetBitmap(std::size_t entry, PageNumber page) const {
    Page& bitmap = file_->Change(page);
    bitmap[0] = static_cast<std::uint8_t>(PageType::UsageBitmap);
    bitmap[1] = 1;
    PutU32(Change() + 1 + 4 * entry, page);
}

}  // namespace tav::jet
