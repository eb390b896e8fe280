// What an import folder holds, and what its catalogue knows of it: one look at each file and one pass
// over the catalogue's bytes. Nothing is written, no document is opened.
//
// A document is settled when the catalogue has an entry for it that can be read, or lists it and has
// none (it was looked at and nothing was found), and its file was not changed since the catalogue was
// written. An entry under the same name in other letters' case is an entry for it, unless it is that of
// another document in the folder.
#pragma once

#include <optional>
#include <vector>

#include "common/text.h"
#include "convert/catalogue.h"
#include "convert/scan_account.h"

namespace tav {

struct ListedDocument {
    Text name;
    std::int64_t changed = 0;                         // StampOf
    std::vector<const CatalogueEntry*> entries = {};  // of the catalogue below
    bool listed_before = false;
    bool changed_since = false;  // since the catalogue was written; also when there is none
    bool settled = false;
};

struct FolderState {
    std::vector<ListedDocument> documents;  // in the order of the listing
    std::vector<Text> unnamable;            // files whose names Windows-1251, or one line, cannot hold
    std::vector<Text> unlisted_xml;         // XML files that are not listed
    std::vector<Text> leftovers;            // temporary files of scans that were killed
    std::optional<Catalogue> catalogue;     // none when it is missing or has no readable frame
    bool all_settled = false;               // and listed in the same order: there is nothing to do
};

// The documents are "*.rtf", and "*.xml" when acts as XML are listed (CheckXml), but for the catalogue
// and the schema. `folder` ends with its separator; one that is missing is empty.
FolderState ReadFolderState(TextView folder, std::optional<bool> acts_as_xml);

// How many of the XML files that are not listed look like acts.
int CountUnlistedActs(TextView folder, const FolderState& state);

// Whether an entry of the document has the note.
bool HasNote(const ListedDocument& document, EntryNote note);

// What the catalogue says of a settled document.
ScannedFile SettledFile(const ListedDocument& document);

}  // namespace tav
