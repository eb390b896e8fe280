#include "convert/folder_state.h"

#include <algorithm>
#include <exception>
#include <future>
#include <unordered_set>
#include <utility>

#include "common/windows1251.h"
#include "convert/document_glance.h"
#include "convert/load_xml_file.h"
#include "platform/files.h"
#include "settings/settings.h"
#include "xml/document.h"

namespace tav {
namespace {

constexpr TextView kForm = u".rtf";
constexpr TextView kXml = u".xml";

bool EndsIn(TextView name, TextView ending) {
    return EqualNoCase(Right(name, ending.size()), ending);
}

bool FitsCatalogue(TextView name) {
    const bool control = std::ranges::any_of(name, [](char16_t c) { return c < u' '; });
    return !control && IsWindows1251(name);
}

// The folder's files, sorted into the lists of a state.
FolderState List(TextView folder, bool acts_as_xml, TextView schema) {
    FolderState state;
    const auto is_xml = [&](TextView name) {
        return EndsIn(name, kXml) && !EqualNoCase(name, kCatalogueName) && !EqualNoCase(name, schema);
    };
    const auto wanted = [&](TextView name) {
        return EndsIn(name, kForm) || is_xml(name) || IsLeftover(name);
    };
    std::vector<StampedFile> files = ListFilesWithStamps(folder, wanted);
    state.documents.reserve(files.size());
    for (StampedFile& file : files) {
        if (IsLeftover(file.name)) {
            state.leftovers.push_back(std::move(file.name));
        } else if (!acts_as_xml && !EndsIn(file.name, kForm)) {
            state.unlisted_xml.push_back(std::move(file.name));
        } else if (!FitsCatalogue(file.name)) {
            state.unnamable.push_back(std::move(file.name));
        } else {
            state.documents.push_back({.name = std::move(file.name), .changed = file.stamp.changed});
        }
    }
    return state;
}

std::optional<Catalogue> ExistingCatalogue(TextView path) {
    if (!FileExists(path)) return std::nullopt;
    try {
        return Catalogue::Load(path);
    } catch (const XmlFailure&) {
        return std::nullopt;
    }
}

// Whether one of them, in the order of the listing, has this very name.
bool IsAmong(const std::vector<ListedDocument>& documents, const Text& name) {
    const auto upper = [](const ListedDocument& document) { return UpperCase(document.name); };
    const Text wanted = UpperCase(name);
    auto document = std::ranges::lower_bound(documents, wanted, {}, upper);
    while (document != documents.end() && document->name != name && upper(*document) == wanted) ++document;
    return document != documents.end() && document->name == name;
}

}  // namespace

FolderState ReadFolderState(TextView folder, std::optional<bool> acts_as_xml) {
    const bool acts = acts_as_xml ? *acts_as_xml : SettingTruth(u"ActXml");
    const Text schema = NameOf(ActSchemaPath());
    const Text path = Text(folder).append(kCatalogueName);
    // Where there are cores for it, the files are looked at while the catalogue is read.
    std::future<FolderState> listing = std::async([&] { return List(folder, acts, schema); });
    const std::optional<FileStamp> stamp = StampOf(path);
    std::optional<Catalogue> catalogue;
    std::exception_ptr unread;
    try {
        catalogue = ExistingCatalogue(path);
    } catch (...) {
        unread = std::current_exception();
    }
    FolderState state = listing.get();
    if (state.documents.empty()) return state;
    if (unread) std::rethrow_exception(unread);
    state.catalogue = std::move(catalogue);
    if (!state.catalogue || !stamp) {
        for (ListedDocument& document : state.documents) document.changed_since = true;
        return state;
    }
    const std::vector<Text>& listed = state.catalogue->CurrentFiles();
    const bool same_list = std::ranges::equal(state.documents, listed, {}, &ListedDocument::name);
    std::unordered_set<TextView> listed_names;
    if (!same_list) listed_names.insert(listed.begin(), listed.end());
    for (ListedDocument& document : state.documents) {
        document.entries = state.catalogue->EntriesNamed(document.name);
        std::erase_if(document.entries, [&](const CatalogueEntry* entry) {
            return entry->name != document.name && IsAmong(state.documents, entry->name);
        });
        document.listed_before = same_list || listed_names.contains(document.name);
        document.changed_since = document.changed > stamp->written;
        document.settled = !document.changed_since && (document.listed_before || !document.entries.empty()) &&
                           std::ranges::all_of(document.entries, &CatalogueEntry::IsReadable);
    }
    state.all_settled = same_list && std::ranges::all_of(state.documents, &ListedDocument::settled);
    return state;
}

int CountUnlistedActs(TextView folder, const FolderState& state) {
    const auto is_act = [&](const Text& name) { return LooksLikeXmlAct(Text(folder).append(name)); };
    return static_cast<int>(std::ranges::count_if(state.unlisted_xml, is_act));
}

bool HasNote(const ListedDocument& document, EntryNote note) {
    return std::ranges::any_of(document.entries,
                               [&](const CatalogueEntry* entry) { return entry->Has(note); });
}

ScannedFile SettledFile(const ListedDocument& document) {
    ScannedFile file{.name = document.name, .state = ScannedFile::State::Settled};
    const auto has_part = [](const CatalogueEntry* entry) { return entry->parts > 0; };
    if (std::ranges::none_of(document.entries, has_part)) file.found = ScannedFile::Found::Nothing;
    file.dropped_text = HasNote(document, EntryNote::DroppedText);
    file.cut_off = HasNote(document, EntryNote::CutOff);
    return file;
}

}  // namespace tav
