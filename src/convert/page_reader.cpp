#include "convert/page_reader.h"

#include <algorithm>
#include <utility>

namespace tav {
namespace {

constexpr std::string_view kFrame = "\\posx";
constexpr std::string_view kPage = "\\page";
constexpr std::string_view kPageStart = "{\\rtf1\\ansi\\ansicpg1251\\deff0\\deflang1033\\page";
constexpr std::string_view kPageEnd = "}\\par }\\sect }";
constexpr std::ptrdiff_t kGroupsClosedAround = 2;  // more than these open
constexpr std::size_t kBraceSearch = 10;

// Where the word stands at or after `from`, npos when it does not. The search goes by one letter of the
// word: backslashes, with which both words begin, are everywhere in an RTF.
std::size_t FindByLetter(std::string_view text, std::string_view word, char letter, std::size_t from) {
    const std::size_t offset = word.find(letter);
    for (std::size_t at = from + offset; (at = text.find(letter, at)) != text.npos; ++at) {
        const std::size_t start = at - offset;
        if (text[start] == word[0] && text.substr(start, word.size()) == word) return start;
    }
    return text.npos;
}

}  // namespace

PageReader::PageReader(std::string document) : document_(std::move(document)), rest_(document_) {
    for (std::size_t at = 0; (at = FindByLetter(rest_, kPage, 'g', at)) != rest_.npos; at += kPage.size()) {
        page_ends_.push_back(at);
    }
}

std::string_view PageReader::Next() {
    const bool begins_after_brace = rest_.substr(0, kBraceSearch).find('}') != rest_.npos;
    const bool last = next_page_ == page_ends_.size();
    const std::size_t size =
        last ? rest_.size() : page_ends_[next_page_++] - (document_.size() - rest_.size());
    page_.assign(kPageStart);
    if (begins_after_brace) page_ += '{';
    std::size_t at = page_.size();
    page_.append(rest_.substr(0, size));
    for (; (at = FindByLetter(page_, kFrame, 'x', at)) != page_.npos; at += kFrame.size()) page_[at] = ' ';
    page_.append(kPageEnd);
    rest_.remove_prefix(last ? size : size + kPage.size());
    const std::string_view text = converter_.Read(page_);
    open_groups_ += converter_.open_groups() + kGroupsClosedAround - (begins_after_brace ? 1 : 0);
    return text;
}

}  // namespace tav
