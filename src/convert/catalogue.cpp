#include "convert/catalogue.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "common/progress.h"
#include "platform/files.h"
#include "xml/document.h"
#include "xml/encoding.h"

namespace tav {
namespace {

constexpr std::string_view kAllOpening = "<all>";
constexpr std::string_view kFileTag = "<file";
constexpr std::string_view kItemClosing = "</item>";
constexpr std::string_view kActual = "actual";

// The items between <actual> and </actual>. A file's name may hold whole tags, but no line end.
std::vector<Text> ReadItems(std::string_view catalogue, NameForm names) {
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
        items.push_back(NameOfDocument(name, names));
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

// The next entry at or after the place, which goes on to its end; none when there are no more.
std::optional<CatalogueEntry> NextEntry(CatalogueWindow& window, std::size_t& at, NameForm names) {
    const auto read_on = [&](std::size_t from) {
        at = 0;
        return window.ReadOn(from);
    };
    for (;;) {
        const std::string_view text = window.text();
        at = text.find(kFileTag, at);
        if (at == text.npos) {
            if (!read_on(text.size() - std::min(text.size(), kFileTag.size()))) return std::nullopt;
            continue;
        }
        const MarkupTag tag = TagAt(text, at);
        if (tag.name != "file") {
            const bool cut = text.find('>', at) == text.npos;
            if (!cut) ++at;
            if (cut && !read_on(at)) return std::nullopt;
            continue;
        }
        CatalogueEntry entry = ReadEntry(text, tag, names);
        // It may have been the text that ended.
        if (entry.end == text.size() && read_on(entry.begin)) continue;
        at = entry.end;
        for (std::size_t* const place : {&entry.begin, &entry.end, &entry.fault_at}) *place += window.begin();
        return entry;
    }
}

}  // namespace

Catalogue Catalogue::Load(TextView path) {
    Catalogue catalogue(path, CatalogueBytes::OfFile(path));
    CatalogueWindow window(catalogue.bytes_);
    if (window.text().starts_with(kCatalogueOpening)) {
        catalogue.Read(window, NameForm::Raw);
        return catalogue;
    }
    Catalogue brought(path, CatalogueBytes::OfText(BroughtToForm(path, ReadFile(path))));
    CatalogueWindow whole(brought.bytes_);
    brought.Read(whole, NameForm::Escaped);
    return brought;
}

void Catalogue::Read(CatalogueWindow& window, NameForm names) {
    while (window.text().find(kActualClosing) == std::string_view::npos && window.ReadOn(0)) {
    }
    current_files_ = ReadItems(window.text(), names);
    // Where the items end, so that no name among them is taken for the beginning of an entry.
    std::size_t at = window.text().find(kActualClosing);
    if (at == std::string_view::npos) at = 0;
    CatalogueLines lines(bytes_);
    entries_.reserve(current_files_.size());
    while (std::optional<CatalogueEntry> entry = NextEntry(window, at, names)) {
        if (!entry->IsReadable()) entry->fault_line = lines.At(entry->fault_at);
        entries_.push_back(*std::move(entry));
        CurrentProgress().ProcessEvents();
    }
    by_name_.reserve(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) by_name_.emplace(entries_[i].name, i);
}

std::vector<const CatalogueEntry*> Catalogue::EntriesNamed(TextView name) const {
    std::vector<const CatalogueEntry*> found;
    const auto [begin, end] = by_name_.equal_range(name);
    for (auto entry = begin; entry != end; ++entry) found.push_back(&entries_[entry->second]);
    std::ranges::sort(found);
    const auto is_exact = [&](const CatalogueEntry* entry) { return entry->name == name; };
    if (std::ranges::any_of(found, is_exact)) {
        std::erase_if(found, [&](const CatalogueEntry* entry) { return !is_exact(entry); });
    }
    return found;
}

std::vector<const CatalogueEntry*> Catalogue::EntriesOf(TextView name) const {
    std::vector<const CatalogueEntry*> entries = EntriesNamed(name);
    if (entries.empty() || entries.front()->name == name) return entries;
    if (listed_.empty()) listed_.insert(current_files_.begin(), current_files_.end());
    std::erase_if(entries, [&](const CatalogueEntry* entry) { return listed_.contains(entry->name); });
    return entries;
}

std::vector<CatalogueElement> Catalogue::PartsOf(TextView name, std::string& bytes) const {
    bytes.clear();
    const std::vector<const CatalogueEntry*> entries = EntriesOf(name);
    for (const CatalogueEntry* const entry : entries) {
        if (!entry->IsReadable()) {
            throw XmlFailure(Text(path_) + u": документ " + Text(name) + u", ",
                             XmlError{.line = entry->fault_line, .reason = entry->fault});
        }
        bytes_.Append(bytes, entry->begin, entry->end - entry->begin);
    }
    std::vector<CatalogueElement> parts;
    std::string_view rest = bytes;
    for (const CatalogueEntry* const entry : entries) {
        std::ranges::move(PartsIn(rest, *entry), std::back_inserter(parts));
        rest.remove_prefix(std::min(rest.size(), entry->end - entry->begin));
    }
    return parts;
}

std::string Catalogue::BytesOf(const CatalogueEntry& entry) const {
    std::string bytes;
    bytes_.Append(bytes, entry.begin, entry.end - entry.begin);
    return bytes;
}

}  // namespace tav
