#include "convert/check_xml.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/guard.h"
#include "common/progress.h"
#include "common/windows1251.h"
#include "convert/catalogue.h"
#include "convert/folder_difference.h"
#include "convert/load_rtf_file.h"
#include "convert/load_xml_file.h"
#include "platform/files.h"
#include "settings/session.h"

namespace tav {
namespace {

bool FitsCatalogue(const Text& name) {
    const bool control = std::any_of(name.begin(), name.end(), [](char16_t c) { return c < u' '; });
    return !control && IsWindows1251(name);
}

void ShowPassedOver(const std::vector<Text>& names) {
    constexpr std::size_t kShown = 20;
    if (names.empty()) return;
    Text text = u"Имена этих файлов нельзя записать в каталог (Windows-1251), файлы пропущены:";
    for (std::size_t i = 0; i < std::min(names.size(), kShown); ++i) text += u"\r\n" + names[i];
    if (names.size() > kShown)
        text += u"\r\n... и ещё " + Digits(static_cast<long long>(names.size() - kShown));
    ShowMessage(u"Импорт файлов", text, MessageIcon::Information);
}

// The folder's files that the catalogue can hold.
std::vector<Text> ListFolder(TextView folder) {
    std::vector<Text> names = ListFiles(folder, u".rtf");
    const auto fits_end = std::stable_partition(names.begin(), names.end(), FitsCatalogue);
    ShowPassedOver({fits_end, names.end()});
    names.erase(fits_end, names.end());
    return names;
}

// Nothing when there is no catalogue, or what stands there is none.
std::optional<Catalogue> ExistingCatalogue(TextView path) {
    if (!FileExists(path)) return std::nullopt;
    try {
        return Catalogue::Load(path);
    } catch (const XmlFailure&) {
        return std::nullopt;
    }
}

std::string Opening(const std::vector<Text>& listed) {
    std::string text(kCatalogueOpening);
    text += kActualOpening;
    for (const Text& name : listed) text.append("\t<item>").append(ToWindows1251(name)).append("</item>\r\n");
    text += kActualClosing;
    return text;
}

// Of each departed name the first entry that is still there goes.
std::vector<bool> DepartedEntries(const Catalogue& catalogue, const std::vector<Text>& names) {
    std::vector<bool> departed(catalogue.EntryCount());
    std::unordered_map<TextView, std::size_t> tried;  // how many entries of a name have had their turn
    for (const Text& name : names) {
        const std::vector<std::size_t>& entries = catalogue.EntriesNamed(name);
        std::size_t& next = tried[name];
        while (next < entries.size() && departed[entries[next]]) ++next;
        if (next < entries.size()) departed[entries[next]] = true;
    }
    return departed;
}

Text Label(const Text& name) {
    if (name.size() <= 60) return name;
    return name.substr(0, 50) + u"..." + Text(Right(name, 10));
}

std::string Convert(TextView folder, const Text& name) {
    const Text ending = LowerCase(Right(name, 3));
    if (ending == u"rtf") return LoadRtfFile(folder, name);
    if (ending == u"xml") return LoadXMLFile(folder, name);
    return {};
}

// The progress window while it is shown.
class ShownProgress {
 public:
    explicit ShownProgress(int files) { CurrentProgress().Show(std::max(files, 0)); }
    ~ShownProgress() { CurrentProgress().Close(); }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;
};

// Appends the entries of the new files; false when the user cancelled.
bool ConvertNew(TextView folder, const FolderDifference& difference, std::string& text) {
    const ShownProgress shown(difference.new_files);
    int done = 0;
    for (const Text& name : difference.remaining) {
        CurrentProgress().SetLabel(Label(name));
        CurrentProgress().ProcessEvents();
        // A folder that has gone is one failure, not one of every file.
        if (!folder.empty() && !FolderExists(folder)) throw Failure(RunTimeError::PathNotFound, folder);
        text += Convert(folder, name);
        if (CancelStamp() != 0) return false;
        CurrentProgress().SetFilesDone(++done);
    }
    return true;
}

Text Scan(const Text& folder) {
    const Text path = folder + Text(kCatalogueName);
    const std::vector<Text> listed = ListFolder(folder);
    if (listed.empty()) return {};
    if (FileExists(path) && CurrentFilesOfHead(path) == listed) return path;

    std::optional<Catalogue> catalogue = ExistingCatalogue(path);
    if (catalogue && catalogue->CurrentFiles() == listed) return path;
    std::vector<Text> known;
    if (catalogue) {
        for (const Catalogue::Name& name : catalogue->Names()) known.push_back(name.text);
    }
    const FolderDifference difference = CompareFolder(listed, known);
    const bool has_new = difference.new_files != 0;

    std::string text = Opening(listed);
    if (catalogue) {
        const std::vector<Text> departed = has_new ? difference.departed : std::vector<Text>();
        catalogue->AppendEntries(text, DepartedEntries(*catalogue, departed));
        catalogue.reset();
    }
    if (has_new && !ConvertNew(folder, difference, text)) return {};
    text.append(kAllClosing).append("\r\n");
    WriteFileWhole(path, text);
    return path;
}

}  // namespace

Text CheckXml(TextView folder) {
    Text path;
    Guarded(u"Ошибка в функции CheckXml", [&] { path = Scan(WithSeparator(folder)); });
    return path;
}

}  // namespace tav
