#include "pdf/qt/page_links.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace tav {
namespace {

constexpr std::string_view kScheme = "tav-sheet:";
// So many that what takes the address's place has room.
constexpr std::size_t kDigits = 20;
constexpr std::string_view kLinkStart = "/S /URI\n/URI (tav-sheet:";

// The entries of the page tree, "6 0 R\n" each, one page after the other.
struct PageTree {
    std::size_t begin = 0;
    std::vector<std::string> entries;
};

PageTree PagesOf(const std::string& pdf) {
    constexpr std::string_view kStart = "/Kids \n[\n";
    PageTree tree;
    tree.begin = pdf.rfind(kStart);
    if (tree.begin == pdf.npos) return tree;
    tree.begin += kStart.size();
    for (std::size_t at = tree.begin; at < pdf.size() && pdf[at] != ']';) {
        const std::size_t end = pdf.find('\n', at);
        if (end == pdf.npos) break;
        tree.entries.push_back(pdf.substr(at, end + 1 - at));
        at = end + 1;
    }
    return tree;
}

}  // namespace

std::string SheetAddress(int sheet) {
    const std::string digits = std::to_string(sheet - kNoSheet);
    return std::string(kScheme) + std::string(kDigits - digits.size(), '0') + digits;
}

void ArrangePages(std::string& pdf, const std::vector<std::size_t>& first_pages) {
    PageTree tree = PagesOf(pdf);
    if (first_pages.empty() || first_pages.back() >= tree.entries.size()) return;
    for (std::size_t at = pdf.find(kLinkStart); at != pdf.npos; at = pdf.find(kLinkStart, at + 1)) {
        const std::size_t number = at + kLinkStart.size();
        const auto sheet = std::strtoull(pdf.c_str() + number, nullptr, 10);
        if (sheet > first_pages.size()) continue;
        const std::size_t page = sheet == 0 ? first_pages.back() : first_pages[sheet - 1];
        const std::string& entry = tree.entries[page];
        std::string jump = "/S /GoTo\n/D [" + entry.substr(0, entry.size() - 1) + " /XYZ null null null]";
        const std::size_t length = kLinkStart.size() + kDigits + 1;
        jump.resize(std::max(jump.size(), length), ' ');
        if (jump.size() == length) pdf.replace(at, length, jump);
    }
    const auto last_sheet = tree.entries.begin() + static_cast<std::ptrdiff_t>(first_pages.back());
    std::rotate(tree.entries.begin(), last_sheet, tree.entries.end());
    std::size_t at = tree.begin;
    for (const std::string& entry : tree.entries) {
        pdf.replace(at, entry.size(), entry);
        at += entry.size();
    }
}

}  // namespace tav
