#include "convert/markup_scan.h"

#include <algorithm>
#include <array>

namespace tav {
namespace {

// Mark-up that is passed over whole, by its first and last characters.
struct Passage {
    std::string_view opening;
    std::string_view closing;
};
constexpr std::array<Passage, 3> kPassages = {{{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}}};

// Behind the ">" of the tag that begins at `at`; a quoted attribute value may hold a ">".
std::size_t EndOfTag(std::string_view document, std::size_t at) {
    char quote = 0;
    for (; at < document.size(); ++at) {
        const char c = document[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return at + 1;
        }
    }
    return at;
}

// Behind the passage that begins at `at`, or `at` when none does.
std::size_t EndOfPassage(std::string_view document, std::size_t at) {
    for (const Passage& passage : kPassages) {
        if (!document.substr(at).starts_with(passage.opening)) continue;
        const std::size_t close = document.find(passage.closing, at + passage.opening.size());
        return close == document.npos ? document.size() : close + passage.closing.size();
    }
    return at;
}

}  // namespace

std::vector<ChildSpan> ChildrenOfRoot(std::string_view document) {
    std::vector<ChildSpan> children;
    int depth = 0;
    std::size_t at = 0;
    while ((at = document.find('<', at)) != document.npos) {
        const std::size_t behind = EndOfPassage(document, at);
        if (behind != at) {
            at = behind;
            continue;
        }
        const std::size_t end = EndOfTag(document, at);
        const std::string_view tag = document.substr(at, end - at);
        const bool closes = tag.starts_with("</");
        if (!closes && depth++ == 1) {
            children.push_back({tag.substr(1, tag.find_first_of(" \t\r\n/>", 1) - 1), at, end});
        }
        if ((closes || tag.ends_with("/>")) && --depth == 1) children.back().end = end;
        at = end;
    }
    return children;
}

}  // namespace tav
