// The rows of the folder's list.
#pragma once

#include <functional>
#include <vector>

#include "forms/forms.h"
#include "load/account.h"

namespace tav {

struct FolderRow {
    Text name;  // of the file
    Text path;
    Picture state = Picture::None;  // what became of it
};

// The columns of both lists of the main window are code, OKATO, period, tax and kind, then the file's name or the
// KPP, then the state.
inline constexpr int kNameColumn = 5;
inline constexpr int kStateColumn = 6;

// The picture that stands for what is said of a document.
Picture PictureOf(Finding finding);

// One row per "*.rtf" file of the folder, in the order of the scan: code, OKATO and
// period of a document that is recognised, and the file's name. A file that cannot be
// read says why in its tool-tip. A folder that is not there has no rows. `go_on` is
// called between the files; false ends the listing, and the rows are those so far.
std::vector<ListRow> ListFolder(TextView folder, const std::function<bool()>& go_on);

// What the last listing listed.
const std::vector<FolderRow>& FolderRows();

// The row after that one, and around again, whose document needs a person the most: the files that something is wrong
// with; where there are none, those that were passed over. -1 when there are none of these either.
int NextOfConcern(int row);

// Adds to every row what became of its file: the state to the row, the reasons to its tool-tip. The files of the account
// are found by their names.
void AddStates(std::vector<ListRow>& rows, const ImportAccount& account);

}  // namespace tav
