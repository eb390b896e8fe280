// The folder scan: brings the catalogue of an import folder up to date.
//
// It lists the folder's "*.rtf" files, converts those the catalogue does not know while the progress window
// shows their names, and rewrites the catalogue whole (catalogue.h, folder_difference.h). A scan that finds
// the listing unchanged costs the listing and the catalogue's head.
//
//   - A document that its reader rejects is listed but has no entry; it is read again only when the listing
//     changes.
//   - Entries of files that left the folder are dropped only in a scan that also counts new files.
//   - A cancel leaves the catalogue as it was.
//   - A catalogue that is no XML document counts as absent: the folder is converted afresh.
//   - A file whose name Windows-1251 cannot express, or with a control character in it, cannot be entered in
//     the catalogue: it is passed over, and one message per scan, "Импорт файлов", names such files.
//   - The count of files is a 32-bit number: a folder may hold more than 32 767.
#pragma once

#include "common/text.h"

namespace tav {

// The catalogue's full path; empty text when the folder holds no such file, after a cancel, and after a
// failure, which is shown.
Text CheckXml(TextView folder);

}  // namespace tav
