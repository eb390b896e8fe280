#include "convert/catalogue_elements.h"

#include "convert/catalogue_markup.h"

namespace tav {
namespace {

// Whether a tag of that name, opening or closing, may begin at the "<".
bool MayBe(std::string_view text, std::size_t at, std::string_view name) {
    std::size_t begin = at + 1;
    if (begin < text.size() && text[begin] == '/') ++begin;
    return begin < text.size() && text[begin] == name[0] && text.substr(begin).starts_with(name);
}

// The tag that closes an element of that name whose content begins at `at`.
MarkupTag ClosingTag(std::string_view text, std::size_t at, std::string_view name) {
    int open = 1;
    while ((at = text.find('<', at)) != text.npos) {
        const MarkupTag tag = MayBe(text, at, name) ? TagAt(text, at) : MarkupTag();
        ++at;
        if (tag.name != name || tag.is_whole) continue;
        open += tag.closes ? -1 : 1;
        if (open == 0) return tag;
    }
    return {};
}

// The value of the only attribute that a tag may have.
std::string_view TypeIn(std::string_view tag) {
    const std::size_t opening = tag.find_first_of("\"'");
    if (opening == tag.npos) return {};
    return tag.substr(opening + 1, tag.find(tag[opening], opening + 1) - opening - 1);
}

}  // namespace

void ElementsOf::Iterator::Next() {
    const MarkupTag tag = NextTag(content_, element_.end);
    element_ = {};
    if (tag.name.empty() || tag.closes) return;
    const MarkupTag closing = tag.is_whole ? tag : ClosingTag(content_, tag.end, tag.name);
    if (closing.name.empty()) return;
    element_.name = tag.name;
    element_.type = TypeIn(content_.substr(tag.begin, tag.end - tag.begin));
    if (!tag.is_whole) element_.content = content_.substr(tag.end, closing.begin - tag.end);
    element_.end = closing.end;
}

ElementsOf::Iterator& ElementsOf::Iterator::operator++() {
    do {
        Next();
    } while (!element_.name.empty() && !wanted_.empty() && element_.name != wanted_);
    return *this;
}

Text TextOf(std::string_view content) {
    if (content.find('<') == content.npos) return TextBetweenTags(content);
    Text text;
    std::size_t at = 0;
    for (MarkupTag tag = NextTag(content, 0); !tag.name.empty(); tag = NextTag(content, at)) {
        text += TextBetweenTags(content.substr(at, tag.begin - at));
        at = tag.end;
    }
    return text += TextBetweenTags(content.substr(at));
}

}  // namespace tav
