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

std::size_t FindPage(std::string_view text, std::size_t from) {
    return FindByLetter(text, kPage, 'g', from);
}

}  // namespace

PageReader::PageReader(std::string document) : document_(std::move(document)), rest_(document_) {
    for (std::size_t at = 0; (at = FindByLetter(rest_, kFrame, 'x', at)) != rest_.npos; at += kFrame.size()) {
        document_[at] = ' ';
    }
    for (std::size_t at = 0; (at = FindPage(rest_, at)) != rest_.npos; at += kPage.size()) ++pages_;
}

std::string_view PageReader::Next() {
    const bool begins_behind_brace = rest_.substr(0, kBraceSearch).find('}') != rest_.npos;
    const std::size_t end = FindPage(rest_, 0);
    page_.assign(kPageStart);
    if (begins_behind_brace) page_ += '{';
    page_.append(rest_.substr(0, end)).append(kPageEnd);
    rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + kPage.size());
    const std::string_view text = converter_.Read(page_);
    open_groups_ += converter_.open_groups() + kGroupsClosedAround - (begins_behind_brace ? 1 : 0);
    return text;
}

}  // namespace tav
