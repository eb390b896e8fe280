// Loads the catalogue listfiles.xml into the database, for one taxpayer.
//
// Every file that the catalogue lists as current and the database does not have yet is loaded, part by part:
// a part belongs to the taxpayer when its INN and KPP match. Files with such a part are moved into the move
// folder, when there is one, after what they held has reached the disk.
//
// What is stored reaches the disk in units: 3,000 rows, or what comes in two seconds, whichever is less; a file that
// is to be moved is a unit of its own. A load that is killed loses the unit it was in and nothing else: its documents
// are new to the next load. The native engine keeps the database locked from the beginning to the end all the
// same; a provider has a transaction for every document instead, and no units.
//
// What fails for the sake of one document (a value that is no date or no number, a rule of a table, an entry
// that cannot be read) undoes that document and no other: the statement that it was to supersede stays the current
// one. At the end one message names these documents. A failure of the database itself or of a move is shown, names
// the document and ends the load; what was loaded before stays.
#pragma once

#include "convert/scan_account.h"
#include "load/account.h"

namespace tav {

// `catalogue`: full path of listfiles.xml, whose folder is the source files' too. `inn`: the taxpayer's INN,
// or several between "|". `kpp`: a KPP; 16 characters or more match any. `move_folder`: empty when nothing is
// to be moved. `scan`: what the scan before it knows of the folder, for the account; without it the account tells
// what the catalogue lists.
ImportAccount LoadFromXml(TextView catalogue, TextView database, TextView inn, TextView kpp,
                          TextView move_folder, const ScanAccount* scan = nullptr);

}  // namespace tav
