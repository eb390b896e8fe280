#include "ui/folder_rows.h"

#include <algorithm>

#include "common/concat.h"
#include "convert/catalogue.h"
#include "convert/load_xml_file.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr TextView kGap = u"   ";

FolderListing& Last() {
    static FolderListing listing;
    return listing;
}

// What was seen of the file before, unless it has changed.
SeenFile Look(const Text& path, const std::unordered_map<Text, SeenFile>& before) {
    const std::optional<FileStamp> stamp = StampOf(path);
    const auto known = before.find(path);
    if (known != before.end() && stamp && known->second.stamp == stamp) return known->second;
    return {stamp, GlanceAtDocument(path)};
}

// Those that a scan lists, in its order.
std::vector<Text> Documents(TextView folder) {
    std::vector<Text> names = ListFiles(folder, u".rtf");
    if (!SettingTruth(u"ActXml")) return names;
    const auto forms = static_cast<std::ptrdiff_t>(names.size());
    const Text schema = NameOf(ActSchemaPath());
    for (Text& name : ListFiles(folder, u".xml")) {
        if (!EqualNoCase(name, kCatalogueName) && !EqualNoCase(name, schema))
            names.push_back(std::move(name));
    }
    std::ranges::inplace_merge(names, names.begin() + forms, {},
                               [](const Text& name) { return UpperCase(name); });
    return names;
}

ListRow RowOf(const FolderRow& file, const DocumentGlance& glance) {
    if (glance.kind == DocumentKind::Unknown) {
        return {file.name, Concat(file.path, u"\n", glance.reason), {{}, {}, {}, {}, {}, {}, {}, file.name}};
    }
    const Text period = Concat(glance.period_begin, u" - ", glance.period_end);
    const Text row = Concat(glance.code, kGap, glance.okato, kGap, period, kGap, file.name);
    const Text kind = glance.kind == DocumentKind::Act ? u"Акт" : u"Выписка";
    return {row,
            Concat(row, u"\n", kind, u": ", glance.tax, u"\n", file.path),
            {glance.code, glance.okato, period, glance.tax, kind, {}, glance.kpp, file.name}};
}

}  // namespace

Picture PictureOf(Finding finding) {
    switch (finding) {
        case Finding::New:
            return Picture::Waiting;
        case Finding::Loaded:
            return Picture::Done;
        case Finding::Superseded:
        case Finding::AllZero:
        case Finding::OtherTaxpayer:
            return Picture::Passed;
        default:
            return Picture::Attention;
    }
}

FolderListing ListFolder(TextView folder, const std::function<bool()>& go_on) {
    FolderListing listing;
    for (const Text& name : Documents(folder)) {
        if (!go_on()) break;
        FolderRow file{name, Concat(WithSeparator(folder), name)};
        SeenFile seen = Look(file.path, Last().seen);
        listing.shown.push_back(RowOf(file, seen.glance));
        listing.seen.emplace(file.path, std::move(seen));
        listing.files.push_back(std::move(file));
    }
    return listing;
}

void SwapListing(FolderListing& listing) {
    std::swap(Last(), listing);
}

void AddStates(FolderListing& listing, const ImportAccount& account) {
    std::vector<ListRow>& rows = listing.shown;
    std::unordered_map<TextView, const FileAccount*> by_name;
    for (const FileAccount& file : account.files) by_name.emplace(file.name, &file);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto found = by_name.find(listing.files[i].name);
        if (found == by_name.end() || found->second->remarks.empty()) continue;
        const std::vector<Remark>& remarks = found->second->remarks;
        rows[i].text.append(kGap).append(TextOf(remarks.front().finding).state);
        rows[i].tool_tip.append(u"\n").append(found->second->Words());
        Text& state = rows[i].cells[kStateColumn];
        for (const Remark& remark : remarks) {
            state.append(state.empty() ? u"" : u"; ").append(TextOf(remark.finding).state);
            rows[i].picture = std::max(rows[i].picture, PictureOf(remark.finding));
        }
        listing.files[i].state = rows[i].picture;
    }
}

int NextOfConcern(int row) {
    const std::vector<FolderRow>& rows = FolderRows();
    const auto worst = std::ranges::max_element(rows, {}, &FolderRow::state);
    if (worst == rows.end() || worst->state < Picture::Passed) return -1;
    const int count = static_cast<int>(rows.size());
    for (int next = (row + 1) % count;; next = (next + 1) % count) {
        if (rows[static_cast<std::size_t>(next)].state == worst->state) return next;
    }
}

const std::vector<FolderRow>& FolderRows() {
    return Last().files;
}

}  // namespace tav
