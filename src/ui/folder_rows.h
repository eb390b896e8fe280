// The rows of the folder's list.
#pragma once

#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "convert/document_glance.h"
#include "forms/forms.h"
#include "load/account.h"
#include "platform/files.h"

namespace tav {

struct FolderRow {
    Text name;  // of the file
    Text path;
    Picture state = Picture::None;  // what became of it
};

// The columns of both lists of the main window are code, OKATO, period, tax, kind, state and KPP; then the folder's has
// the file's name.
inline constexpr int kStateColumn = 5;
inline constexpr int kKppColumn = 6;

// The picture that stands for what is said of a document.
Picture PictureOf(Finding finding);

// What is known of a file, for as long as it does not change.
struct SeenFile {
    std::optional<FileStamp> stamp;
    DocumentGlance glance;
};

struct FolderListing {
    std::vector<ListRow> shown;
    std::vector<FolderRow> files;                  // one per row
    std::unordered_map<Text, SeenFile> seen = {};  // by path
};

// One row per document that a scan lists, in its order: code, OKATO and
// period of a document that is recognised, and the file's name. A file that cannot be
// read says why in its tool-tip. A folder that is not there has no rows. `go_on` is
// called between the files; false ends the listing, and the rows are those so far.
// A file is looked into only when it is new or has changed since the listing that was kept last.
FolderListing ListFolder(TextView folder, const std::function<bool()>& go_on);

// From now on these are the rows; what was kept before is given back.
void SwapListing(FolderListing& listing);
const std::vector<FolderRow>& FolderRows();

// The row after that one, and around again, whose document needs a person the most: the files that something is wrong
// with; where there are none, those that were passed over. -1 when there are none of these either.
int NextOfConcern(int row);

// Adds to every row what became of its file: the state to the row, the reasons to its tool-tip. The files of the account
// are found by their names.
void AddStates(FolderListing& listing, const ImportAccount& account);

}  // namespace tav
