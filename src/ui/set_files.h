// SetFiles: fills the two lists of the main window.
//
// Module-level state: the rows of the folder's list, with what is known of each file. A file is looked into
// only when it is new or has changed, so refilling the list of a large folder is quick.
#pragma once

#include <functional>

#include "common/text.h"
#include "load/account.h"
#include "ui/form.h"

namespace tav {

enum class FilesOf {
    Database,  // one row per document held for the taxpayer; `path` is the database file
    Folder     // one row per document that a scan lists; `path` is the folder
};

// Fills `list` and returns the information text, three parts separated by "*":
//   the taxpayer's name (the setting NameINNKPP, else the documents' own)
//   "Выписок в базе данных: " n CR LF "Актов в базе данных: " n CR LF "Не перекрываются интервалами: " n
//   "Файлов в папке: " n CR LF "Подлежат загрузке: " n        (empty parts where nothing is known)
// A KPP of 16 characters and more, or none, means every subdivision.
//
// `busy` says whether somebody else holds the database: its part of the text is empty then, and the list of the
// database keeps its rows. A folder that has the same files as at its last listing keeps their states and its
// counts. `go_on` is called between the files of a folder, by the work that reads it (common/aside.h); false ends
// the listing where it is.
//
// Any other failure is shown (a file held by another program as "Запрет", else "Ошибка в функции SetFiles") and
// the text holds what was found all the same: of the database though the folder cannot be read. The same failure
// is shown once, until a listing succeeds or ShowFailuresAgain.
Text SetFiles(
    ListBox& list, FilesOf source, TextView path, TextView inn, TextView kpp, bool& busy,
    const std::function<bool()>& go_on = [] { return true; });

// What became of the files that the last listing of a folder listed; of nothing when the database could not be read.
const ImportAccount& FolderAccount();

// The full path of the file in a row of the folder's list; empty for no such row.
Text FileOfRow(int row);

void ShowFailuresAgain();

}  // namespace tav
