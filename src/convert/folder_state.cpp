#include "convert/folder_state.h"

#include <algorithm>
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

// Sorts the folder's files into the lists of the state.
void List(TextView folder, bool acts_as_xml, FolderState& state) {
    const Text schema = NameOf(ActSchemaPath());
    const auto is_xml = [&](TextView name) {
        return EndsIn(name, kXml) && !EqualNoCase(name, kCatalogueName) && !EqualNoCase(name, schema);
    };
    const auto wanted = [&](TextView name) {
        return EndsIn(name, kForm) || is_xml(name) || IsLeftover(name);
    };
    for (StampedFile& file : ListFilesWithStamps(folder, wanted)) {
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
}

std::optional<Catalogue> ExistingCatalogue(TextView path) {
    if (!FileExists(path)) return std::nullopt;
    try {
        return Catalogue::Load(path);
    } catch (const XmlFailure&) {
        return std::nullopt;
    }
}

}  // namespace

FolderState ReadFolderState(TextView folder, std::optional<bool> acts_as_xml) {
    FolderState state;
    List(folder, acts_as_xml ? *acts_as_xml : SettingTruth(u"ActXml"), state);
    if (state.documents.empty()) return state;
    const Text path = Text(folder).append(kCatalogueName);
    const std::optional<FileStamp> stamp = StampOf(path);
    state.catalogue = ExistingCatalogue(path);
    if (!state.catalogue || !stamp) {
        for (ListedDocument& document : state.documents) document.changed_since = true;
        return state;
    }
    const std::vector<Text>& listed = state.catalogue->CurrentFiles();
    const std::unordered_set<TextView> listed_names(listed.begin(), listed.end());
    for (ListedDocument& document : state.documents) {
        document.entries = state.catalogue->EntriesNamed(document.name);
        document.listed_before = listed_names.contains(document.name);
        document.changed_since = document.changed > stamp->written;
        document.settled = !document.changed_since && (document.listed_before || !document.entries.empty()) &&
                           std::ranges::all_of(document.entries, &CatalogueEntry::IsReadable);
    }
    state.all_settled = std::ranges::all_of(state.documents, &ListedDocument::settled) &&
                        std::ranges::equal(state.documents, listed, {}, &ListedDocument::name);
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
