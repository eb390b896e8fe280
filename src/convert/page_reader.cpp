#include "convert/page_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "convert/characters.h"

namespace tav {
namespace {

constexpr std::string_view kPageStart = "{\\rtf1\\ansi\\ansicpg1251\\deff0\\deflang1033\\page";
constexpr std::string_view kPageEnd = "}\\par }\\sect }";
constexpr std::ptrdiff_t kGroupsClosedAround = 2;  // more than these open
constexpr std::size_t kBraceSearch = 10;
static_assert(PageReader::kAround > kPageStart.size() && PageReader::kAround >= kPageEnd.size());

// Of the word's letters the rarest in an RTF.
constexpr std::size_t kRare = kPage.find('g');

// Whether the word may begin at one of kPlaces: bytes only and no branch, so that the compiler compares many at once.
constexpr std::size_t kPlaces = 64;
bool MayHoldPage(const char* at) {
    std::uint8_t may = 0;
    for (std::size_t i = 0; i < kPlaces; ++i)
        may |= (at[i] == kPage[0] ? 1 : 0) & (at[i + kRare] == kPage[kRare] ? 1 : 0);
    return may != 0;
}

bool IsPage(const char* at) {
    return std::memcmp(at, kPage.data(), kPage.size()) == 0;
}

// Where the word begins at or after `at`; `end` when it does not.
const char* FindPage(const char* at, const char* end) {
    const auto left = [&] { return static_cast<std::size_t>(end - at); };
    for (; left() >= kPlaces + kPage.size(); at += kPlaces) {
        if (!MayHoldPage(at)) continue;
        for (std::size_t i = 0; i < kPlaces; ++i)
            if (IsPage(at + i)) return at + i;
    }
    for (; left() >= kPage.size(); ++at)
        if (IsPage(at)) return at;
    return end;
}

}  // namespace

void PageReader::Open(std::string_view document) {
    Begin(nullptr, document.size());
    document.copy(buffer_.get() + begin_, document.size());
    end_ += document.size();
    size_ = document.size();
    CountPages();
}

void PageReader::Open(InputFile& file) {
    Begin(&file, kPiece);
    size_ = Fill();
    CountPages();
    if (file_ == nullptr) return;
    while (file_ != nullptr) {
        begin_ = end_ - (kPage.size() - 1);
        size_ += Fill();
        CountPages();
    }
    file.Rewind();
    file_ = &file;
    begin_ = end_ = kAround;
    Fill();
}

void PageReader::Begin(InputFile* file, std::size_t piece) {
    if (capacity_ < piece + 2 * kAround) {
        capacity_ = piece + 2 * kAround;
        buffer_ = std::make_unique_for_overwrite<char[]>(capacity_);
    }
    file_ = file;
    begin_ = end_ = page_end_ = kAround;
    pages_ = 1;
    open_groups_ = 0;
    covered_.clear();
}

// Moves the document's bytes to the buffer's beginning and reads on until it is full: how many bytes. One that is full
// of them grows.
std::size_t PageReader::Fill() {
    char* const start = buffer_.get() + kAround;
    const std::size_t kept = end_ - begin_;
    std::memmove(start, buffer_.get() + begin_, kept);
    begin_ = kAround;
    end_ = begin_ + kept;
    if (end_ + kAround == capacity_) {
        auto larger = std::make_unique_for_overwrite<char[]>(2 * capacity_);
        std::memcpy(larger.get() + begin_, start, kept);
        buffer_ = std::move(larger);
        capacity_ *= 2;
    }
    const std::size_t room = capacity_ - kAround - end_;
    const std::size_t got = file_->Read(buffer_.get() + end_, room);
    end_ += got;
    if (got < room) file_ = nullptr;
    return got;
}

void PageReader::CountPages() {
    const char* const end = buffer_.get() + end_;
    for (const char* at = buffer_.get() + begin_; (at = FindPage(at, end)) != end; at += kPage.size())
        ++pages_;
}

// Puts back what the end of the last page has covered.
void PageReader::Uncover() {
    covered_.copy(buffer_.get() + page_end_, covered_.size());
    covered_.clear();
}

bool PageReader::More() {
    Uncover();
    std::size_t searched = 0;
    for (;;) {
        const char* const end = buffer_.get() + end_;
        const char* const found = FindPage(buffer_.get() + begin_ + searched, end);
        page_end_ = static_cast<std::size_t>(found - buffer_.get());
        const bool whole = found != end && end_ - begin_ >= kBraceSearch;
        if (whole || file_ == nullptr) return begin_ != end_;
        searched = std::min(page_end_, std::max(end_, begin_ + kPage.size()) - kPage.size()) - begin_;
        Fill();
    }
}

std::string_view PageReader::Next() {
    const std::string_view rest(buffer_.get() + begin_, end_ - begin_);
    const bool begins_after_brace = rest.substr(0, kBraceSearch).find('}') != rest.npos;
    const std::size_t next = std::min(page_end_ + kPage.size(), end_);
    covered_.assign(buffer_.get() + page_end_, kPageEnd.size());
    kPageEnd.copy(buffer_.get() + page_end_, kPageEnd.size());
    std::size_t start = begin_;
    if (begins_after_brace) buffer_[--start] = '{';
    start -= kPageStart.size();
    kPageStart.copy(buffer_.get() + start, kPageStart.size());
    page_ = {buffer_.get() + start, page_end_ + kPageEnd.size() - start};
    begin_ = next;
    const std::string_view text = converter_.Read(page_);
    open_groups_ += converter_.open_groups() + kGroupsClosedAround - (begins_after_brace ? 1 : 0);
    return text;
}

}  // namespace tav
