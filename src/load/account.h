// The account of an import: what became of each document of a folder, and why.
//
// It is made in one place, by the loader, from what the scan knows of the folder, what stands in the catalogue
// and what the database holds. It describes the state in which the folder is, not the way there: whoever
// imports a folder twice, or once more after an interruption, gets the same findings. Only `now` and the
// counts tell what this very import did.
//
// RunImport (run_import.h), LoadFromXml (load_from_xml.h) and AccountOfFolder (account_of_folder.h) give it. The
// command line prints it, the window shows it in its list and its information text; none of them finds out
// anything by itself.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "common/text.h"

namespace tav {

// What can be said of a document. The first eight tell where it is; a document has one of them at least, and
// several when its file holds several documents. The others are remarks beside these.
enum class Finding {
    New,            // not in the database: the next import loads it
    Loaded,         // in the database, the current one of its series, or an act
    Superseded,     // in the database, but another statement of its series is the current one
    AllZero,        // passed over: every amount is 0.00
    OtherTaxpayer,  // passed over: it has another INN or KPP
    NotRecognised,  // neither a statement nor an act
    Unreadable,     // the file cannot be opened, or its entry in the catalogue cannot be read
    Failed,         // the database refused it; nothing of it was stored
    Changed,        // the file is not what was loaded from it
    Shortened,      // texts were cut to the size of their columns
    DroppedText,    // visible text that stands after the end of a page was left out
    CutOff,         // the text ends inside a group; what is there is loaded
    Arithmetic      // a line's balance does not follow from the line before it
};
inline constexpr int kFindings = 13;

// How a finding is told.
struct FindingText {
    Finding finding;
    std::string_view key;  // for programs: "loaded", "other_taxpayer"
    TextView state;        // of one document, in a list's row: "загружен"
    TextView counted;      // of many, before their number: "Загружено файлов"
    bool named;            // a person is told the files' names and the reasons
};
// In the order of the enumeration.
std::span<const FindingText> FindingTexts();
const FindingText& TextOf(Finding finding);

struct Remark {
    Finding finding = Finding::New;
    Text reason =
        {};         // for a person, one line in Russian or as the system says it; empty where none is needed
    Text inn = {};  // OtherTaxpayer: whose it is
    Text kpp = {};

    bool operator==(const Remark&) const = default;
};

// A document of that taxpayer where another one's are looked for.
Remark OtherTaxpayer(const Text& inn, const Text& kpp);

struct FileAccount {
    Text name;                         // of the file, without its folder
    bool now = false;                  // it was this import that brought it into the database
    std::vector<Remark> remarks = {};  // in the order of the findings

    // The first remark with that finding, or none.
    const Remark* Find(Finding finding) const;
    // "заменена; сокращены тексты: h8 (300 знаков)": all findings with their reasons, for a list's row.
    Text Words() const;
};

struct ImportAccount {
    Text inn;  // whose documents were looked for; empty: everybody's
    Text kpp;
    std::vector<FileAccount> files;  // in the order of the folder's listing
    std::vector<Text> notices;       // what concerns the folder as a whole, one sentence each
    bool complete = false;           // nothing stopped it
    bool imported = false;           // an import or a load, not just a look
    bool database_failed = false;    // it cannot be opened, is full or damaged: nothing else goes into it now

    // What was done now.
    int documents = 0;  // statements and acts stored
    int rows = 0;       // lines of statements stored
    int moved = 0;      // files moved away

    // The files that have a finding.
    int Count(Finding finding) const;
    // The files that were brought into the database now.
    int CountNow() const;
};

// The one sentence at the end: what was done, or why nothing was. "Новых документов нет."
Text ClosingSentence(const ImportAccount& account);

}  // namespace tav
