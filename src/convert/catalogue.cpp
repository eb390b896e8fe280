#include "convert/catalogue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "common/progress.h"
#include "platform/files.h"
#include "xml/document.h"
#include "xml/encoding.h"

namespace tav {
namespace {

constexpr std::string_view kAllOpening = "<all>";
constexpr std::string_view kItemClosing = "</item>";
constexpr std::string_view kActual = "actual";

// The items between <actual> and </actual>. A file's name may hold whole tags, but no line end.
std::vector<Text> ReadItems(std::string_view catalogue) {
    std::vector<Text> items;
    bool inside = false;
    std::size_t at = 0;
    for (MarkupTag tag = NextTag(catalogue, 0); !tag.name.empty(); tag = NextTag(catalogue, at)) {
        at = tag.end;
        if (tag.name == "file" || (tag.name == kActual && tag.closes)) break;
        if (tag.name == kActual) inside = true;
        if (!inside || tag.name != "item" || tag.closes) continue;
        const std::string_view line =
            catalogue.substr(at, tag.is_whole ? 0 : catalogue.find_first_of("\r\n", at) - at);
        const std::string_view name = line.substr(0, line.find(kItemClosing));
        items.push_back(TextBetweenTags(name));
        at += name.size();
    }
    return items;
}

// Any catalogue as the bytes of one that a scan has written.
std::string BroughtToForm(TextView path, std::string bytes) {
    const bool has_frame = bytes.find(kAllOpening) != bytes.npos;
    try {
        if (has_frame) return Document::Parse(bytes).Save();
    } catch (const XmlFailure& failure) {
        if (!DeclaresWindows1251(bytes)) throw XmlFailure(Text(path) + u": ", failure.error());
        return bytes;
    }
    throw XmlFailure(Text(path) + u": ", XmlError{.line = 0, .reason = u"нет элемента <all>"});
}

}  // namespace

Catalogue Catalogue::Load(TextView path) {
    Catalogue catalogue;
    catalogue.path_ = path;
    catalogue.bytes_ = ReadFile(path);
    if (!catalogue.bytes_.starts_with(kCatalogueOpening)) {
        catalogue.bytes_ = BroughtToForm(path, std::move(catalogue.bytes_));
    }
    const std::string_view bytes = catalogue.bytes_;
    catalogue.current_files_ = ReadItems(bytes);
    // Where the items end, so that no name among them is taken for the beginning of an entry.
    std::size_t at = bytes.find(kActualClosing);
    if (at == bytes.npos) at = 0;
    while ((at = bytes.find("<file", at)) != bytes.npos) {
        const MarkupTag tag = TagAt(bytes, at);
        if (tag.name != "file") {
            ++at;
            continue;
        }
        catalogue.entries_.push_back(ReadEntry(bytes, tag));
        at = catalogue.entries_.back().end;
        CurrentProgress().ProcessEvents();
    }
    catalogue.entries_by_name_.reserve(catalogue.entries_.size());
    for (std::size_t i = 0; i < catalogue.entries_.size(); ++i) {
        catalogue.entries_by_name_[UpperCase(catalogue.entries_[i].name)].push_back(i);
    }
    return catalogue;
}

std::vector<const CatalogueEntry*> Catalogue::EntriesNamed(TextView name) const {
    std::vector<const CatalogueEntry*> found;
    const auto entries = entries_by_name_.find(UpperCase(name));
    if (entries == entries_by_name_.end()) return found;
    for (const std::size_t entry : entries->second) found.push_back(&entries_[entry]);
    const auto is_exact = [&](const CatalogueEntry* entry) { return entry->name == name; };
    if (std::ranges::any_of(found, is_exact)) {
        std::erase_if(found, [&](const CatalogueEntry* entry) { return !is_exact(entry); });
    }
    return found;
}

std::vector<CatalogueElement> Catalogue::PartsOf(TextView name) const {
    std::vector<CatalogueElement> parts;
    for (const CatalogueEntry* const entry : EntriesNamed(name)) {
        if (!entry->IsReadable()) {
            const auto at = static_cast<std::ptrdiff_t>(entry->fault_at);
            const auto line = std::count(bytes_.begin(), bytes_.begin() + at, '\n') + 1;
            throw XmlFailure(Text(path_) + u": документ " + Text(name) + u", ",
                             XmlError{.line = static_cast<int>(line), .reason = entry->fault});
        }
        std::ranges::move(PartsIn(bytes_, *entry), std::back_inserter(parts));
    }
    return parts;
}

}  // namespace tav
