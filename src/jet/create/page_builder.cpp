#include "jet/create/page_builder.h"

#include "common/failure.h"
#include "jet/file/data_page.h"
#include "jet/index/index_page.h"

namespace tav::jet {
namespace {

constexpr std::size_t kMapBytes = 64;

[[noreturn]] void TooMuch() {
    throw Failure(u"The tables of a new database are too many or too wide.");
}

}  // namespace

DataPage::DataPage(std::uint32_t owner) {
    InitializeDataPage(page_, owner);
}

std::uint8_t DataPage::Add(std::string_view record) {
    if (SlotCount(page_) >= kMaximumSlots || U16(&page_[2]) < record.size() + 2) TooMuch();
    return AddRecord(page_, {reinterpret_cast<const std::uint8_t*>(record.data()), record.size()}, 0);
}

std::string MapRecord(PageNumber first, PageNumber end) {
    if (first > end || end > kMapBytes * 8) TooMuch();
    std::string record(5 + kMapBytes, '\0');
    for (PageNumber page = first; page < end; ++page) {
        char& byte = record[5 + page / 8];
        byte = static_cast<char>(byte | 1 << page % 8);
    }
    return record;
}

Page LeafPage(std::uint32_t owner, std::span<const std::string> entries) {
    Page page{};
    IndexPageEditor::FormatLeaf(page, owner);
    if (!IndexPageEditor(page, 0, {}).Pack(entries)) TooMuch();
    return page;
}

}  // namespace tav::jet
