#include "convert/check_xml.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/guard.h"
#include "common/progress.h"
#include "common/windows1251.h"
#include "convert/catalogue.h"
#include "convert/conversion.h"
#include "convert/folder_state.h"
#include "convert/load_rtf_file.h"
#include "convert/load_xml_file.h"
#include "convert/read_ahead.h"
#include "convert/scanned_document.h"
#include "platform/files.h"
#include "settings/session.h"

namespace tav {
namespace {

using State = ScannedFile::State;
using Clock = std::chrono::steady_clock;

constexpr TextView kTitle = u"Импорт файлов";
constexpr std::size_t kNamed = 20;

// One message with a line per thing that a person should know of; the first of them only.
void ShowLines(Text text, const std::vector<Text>& lines) {
    if (lines.empty()) return;
    for (std::size_t i = 0; i < std::min(lines.size(), kNamed); ++i) text += u"\r\n" + lines[i];
    if (lines.size() > kNamed)
        text += u"\r\n... и ещё " + Digits(static_cast<long long>(lines.size() - kNamed));
    ShowMessage(kTitle, text, MessageIcon::Information);
}

void ShowDroppedText(const std::vector<ScannedFile>& files) {
    std::vector<Text> lines;
    for (const ScannedFile& file : files) {
        if (!file.dropped_pages.empty()) lines.push_back(DroppedTextLine(file.name, file.dropped_pages));
    }
    ShowLines(u"Часть текста документов не прочитана:", lines);
}

Text Label(const Text& name) {
    if (name.size() <= 60) return name;
    return name.substr(0, 50) + u"..." + Text(Right(name, 10));
}

// The progress window while it is shown.
class ShownProgress {
 public:
    explicit ShownProgress(std::size_t files) { CurrentProgress().Show(static_cast<int>(files)); }
    ~ShownProgress() { CurrentProgress().Close(); }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;
};

// The file system's clock goes on in steps: a file that changed right now could change once more and
// look the same.
void WaitForFileClock(const std::vector<ListedDocument>& documents) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::chrono::nanoseconds age = 2 * kFileClockStep;
    for (const ListedDocument& document : documents) {
        const auto its = now - std::chrono::nanoseconds(document.changed);
        if (its.count() >= 0) age = std::min<std::chrono::nanoseconds>(age, its);
    }
    std::this_thread::sleep_for(2 * kFileClockStep - age);
}

class Scan {
 public:
    Scan(Text folder, std::optional<bool> acts_as_xml, const StoredOtherwise& stored_otherwise,
         ScanAccount& account)
        : folder_(std::move(folder)),
          path_(folder_ + Text(kCatalogueName)),
          acts_as_xml_(acts_as_xml),
          stored_otherwise_(stored_otherwise),
          account_(account) {}

    // False when the user cancelled.
    bool Run() {
        state_ = ReadFolderState(folder_, acts_as_xml_);
        for (const Text& name : state_.leftovers) RemoveLeftover(folder_ + name);
        account_.unlisted_acts = CountUnlistedActs(folder_, state_);
        account_.unnamable = std::move(state_.unnamable);
        ShowLines(u"Имена этих файлов нельзя записать в каталог (Windows-1251), файлы пропущены:",
                  account_.unnamable);
        account_.files.reserve(state_.documents.size());
        for (const ListedDocument& document : state_.documents)
            account_.files.push_back(SettledFile(document));
        if (state_.documents.empty()) return true;
        if (!state_.all_settled && !Update()) return false;
        account_.catalogue = path_;
        account_.read = std::move(state_.catalogue);
        ShowDroppedText(account_.files);
        return true;
    }

 private:
    bool Update();
    std::vector<const ListedDocument*> Unsettled() const;
    ScannedDocument ReadAct(const ListedDocument& document) const;
    ScannedDocument ReadForm(const ListedDocument& document, RtfReader& reader, ReadingSteps& steps) const;
    void NeedFolder() const;
    bool Convert(const std::vector<const ListedDocument*>& documents);
    void Take(const ListedDocument& document, ScannedDocument made);
    std::string Opening() const;
    std::string Carried(bool without_departed) const;

    Text folder_;
    Text path_;
    std::optional<bool> acts_as_xml_;
    const StoredOtherwise& stored_otherwise_;
    ScanAccount& account_;
    FolderState state_;
    std::string converted_;                               // the new entries
    std::unordered_set<const CatalogueEntry*> outdated_;  // the old ones of what was converted
    bool must_be_written_ = false;  // also when its bytes stay: a changed file gave what it had given before
};

// What is converted: every document that is not settled; beside them those whose names the catalogue has
// in other letters' case only.
std::vector<const ListedDocument*> Scan::Unsettled() const {
    std::vector<const ListedDocument*> documents;
    if (std::ranges::all_of(state_.documents, &ListedDocument::settled)) return documents;
    for (const ListedDocument& document : state_.documents) {
        const bool other_case = !document.entries.empty() && document.entries.front()->name != document.name;
        if (!document.settled || other_case) documents.push_back(&document);
    }
    return documents;
}

bool Scan::Update() {
    const std::vector<const ListedDocument*> unsettled = Unsettled();
    WaitForFileClock(state_.documents);
    const Clock::time_point begin = Clock::now();
    if (!unsettled.empty() && !Convert(unsettled)) return false;
    std::string text = std::move(converted_);  // no second copy of what may be most of the catalogue
    text.insert(0, Opening().append(Carried(!unsettled.empty()))).append(kAllClosing).append("\r\n");
    if (!must_be_written_ && state_.catalogue && text == ReadFile(path_)) return true;
    state_.catalogue.reset();
    WriteFileWhole(path_, text, Clock::now() - begin + kFileClockStep);
    return true;
}

// Acts delivered as XML are read by this thread, when it is their turn: the library that reads them may have been built
// for one thread only.
ScannedDocument Scan::ReadAct(const ListedDocument& document) const {
    NeedFolder();
    return Finished(folder_ + document.name, LoadXMLFile(folder_, document.name),
                    HasNote(document, EntryNote::Again));
}

ScannedDocument Scan::ReadForm(const ListedDocument& document, RtfReader& reader, ReadingSteps& steps) const {
    return Finished(folder_ + document.name, reader.Read(folder_, document.name, steps),
                    HasNote(document, EntryNote::Again));
}

// A folder that has gone is one failure, not one of every file.
void Scan::NeedFolder() const {
    if (!folder_.empty() && !FolderExists(folder_)) throw Failure(RunTimeError::PathNotFound, folder_);
}

// False when the user cancelled.
bool Scan::Convert(const std::vector<const ListedDocument*>& documents) {
    const auto is_act = [](const ListedDocument* document) {
        return EqualNoCase(Right(document->name, 3), u"xml");
    };
    std::vector<const ListedDocument*> forms;
    std::ranges::remove_copy_if(documents, std::back_inserter(forms), is_act);
    const ShownProgress shown(documents.size());
    ReadAhead ahead(forms.size(), [&](RtfReader& reader, std::size_t number, ReadingSteps& steps) {
        return ReadForm(*forms[number], reader, steps);
    });
    int done = 0;
    for (const ListedDocument* const document : documents) {
        CurrentProgress().SetLabel(Label(document->name));
        CurrentProgress().ProcessEvents();
        ShownSteps steps;
        ScannedDocument made = is_act(document) ? ReadAct(*document) : ahead.Next(steps);
        if (made.conversion.unreadable) NeedFolder();
        ShowRtfFailure(made.conversion);
        if (CancelStamp() != 0) return false;
        Take(*document, std::move(made));
        CurrentProgress().SetFilesDone(++done);
    }
    return true;
}

// Enters what became of a document into the account and the new catalogue.
void Scan::Take(const ListedDocument& document, ScannedDocument made) {
    Conversion& conversion = made.conversion;
    const std::string& entry = conversion.entry;
    ScannedFile& file = account_.files[static_cast<std::size_t>(&document - state_.documents.data())];
    file = {.name = document.name,
            .state = document.listed_before ? State::Again : State::New,
            .found = made.found,
            .reason = std::move(made.reason),
            .cut_off = conversion.cut_off,
            .dropped_text = !conversion.dropped_pages.empty(),
            .dropped_pages = std::move(conversion.dropped_pages)};
    if (!document.settled) outdated_.insert(document.entries.begin(), document.entries.end());
    if (conversion.unreadable) {
        file.state = State::Unreadable;
        return;
    }
    must_be_written_ = must_be_written_ || document.changed_since;
    std::string before;
    for (const CatalogueEntry* const old : document.entries) {
        before.append(state_.catalogue->BytesOf(*old)).append("\r\n");
    }
    if (!entry.empty()) {
        const auto is_other = [&] {
            if (document.listed_before) return before != entry;
            return stored_otherwise_ && stored_otherwise_(document.name, entry);
        };
        const bool other = !HasNote(document, EntryNote::Again) && is_other();
        converted_ += other ? WithNotes(entry, NoteIf(true, EntryNote::Again)) : entry;
    }
    if (document.listed_before && before == entry) file.state = State::Settled;
}

std::string Scan::Opening() const {
    std::string text(kCatalogueOpening);
    text += kActualOpening;
    for (const ScannedFile& file : account_.files) {
        if (file.state == State::Unreadable) continue;
        text.append("\t<item>").append(ToWindows1251(file.name)).append("</item>\r\n");
    }
    text += kActualClosing;
    return text;
}

// The entries that stay, in their order. Of several under one name that is in the folder, only the last
// one is not departed.
std::string Scan::Carried(bool without_departed) const {
    std::string text;
    if (!state_.catalogue) return text;
    std::unordered_set<const CatalogueEntry*> present;
    for (const ListedDocument& document : state_.documents) {
        if (!document.entries.empty()) present.insert(document.entries.back());
    }
    for (const CatalogueEntry& entry : state_.catalogue->entries()) {
        if (outdated_.contains(&entry) || (without_departed && !present.contains(&entry))) continue;
        text.append(state_.catalogue->BytesOf(entry)).append("\r\n");
    }
    return text;
}

}  // namespace

ScanAccount CheckXml(TextView folder, std::optional<bool> acts_as_xml,
                     const StoredOtherwise& stored_otherwise) {
    ScanAccount account;
    bool complete = false;
    Guarded(u"Ошибка в функции CheckXml",
            [&] { complete = Scan(WithSeparator(folder), acts_as_xml, stored_otherwise, account).Run(); });
    return complete ? std::move(account) : ScanAccount{};
}

}  // namespace tav
