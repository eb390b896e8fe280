// Loads the catalogue listfiles.xml into the database, for one taxpayer.
//
// Every file that the catalogue lists as current and the database does not have yet is loaded, part by part:
// a part belongs to the taxpayer when its INN and KPP match. Files with such a part are moved into the move
// folder, when there is one, after what they held has reached the disk.
//
// Everything stays as far as it got when something fails: the failure is shown and names the document.
#pragma once

#include "load/account.h"

namespace tav {

// `catalogue`: full path of listfiles.xml, whose folder is the source files' too. `inn`: the taxpayer's INN,
// or several between "|". `kpp`: a KPP; 16 characters or more match any. `move_folder`: empty when nothing is
// to be moved.
ImportAccount LoadFromXml(TextView catalogue, TextView database, TextView inn, TextView kpp,
                          TextView move_folder);

}  // namespace tav
