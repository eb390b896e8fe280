// The folder scan: brings the catalogue of an import folder up to date.
//
// It lists the folder's "*.rtf" files (and acts as XML, when asked to), converts those that are not
// settled (folder_state.h) while the progress window shows their names, and rewrites the catalogue
// whole. A scan that finds everything settled and the listing unchanged writes nothing.
//
//   - A document that is converted again loses its old entry. One known only under its name in other
//     letters' case is settled, and converted under its own name by the first scan that converts
//     anything.
//   - Entries of files that left the folder are dropped only in a scan that also converts something.
//   - A document that its reader rejects is listed but has no entry. One that cannot be opened or read
//     is not listed either, so every scan tries it again; one whose entry cannot be read is converted
//     again by every scan.
//   - What changes in the folder while a scan runs is not settled for the next one: the catalogue says
//     that it was written before the scan opened the first document.
//   - A cancel leaves the catalogue as it was.
//   - A catalogue without a readable frame counts as absent: the folder is converted afresh.
//   - A file whose name Windows-1251 cannot express, or with a control character in it, cannot be
//     entered in the catalogue: it is passed over. One message per scan, "Импорт файлов", names such
//     files, another one the documents and pages that hide visible text after their last closing
//     brace.
//   - Temporary files that killed scans left in the folder are removed.
//   - The count of files is a 32-bit number: a folder may hold more than 32 767.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "common/text.h"
#include "convert/scan_account.h"

namespace tav {

// Whether the database holds another document of that name than the one of the entry.
using StoredOtherwise = std::function<bool(const Text& name, std::string_view entry)>;

// Acts delivered as XML are listed when the setting ActXml is true, unless `acts_as_xml` says it. The
// account's catalogue is empty when the folder holds no document, after a cancel, and after a failure,
// which is shown. `stored_otherwise` is asked of the documents that the catalogue did not list.
ScanAccount CheckXml(TextView folder, std::optional<bool> acts_as_xml = {},
                     const StoredOtherwise& stored_otherwise = {});

}  // namespace tav
