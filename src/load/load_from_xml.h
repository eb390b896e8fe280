// Loads the catalogue listfiles.xml into the database, for one taxpayer.
//
// Every file that the catalogue lists as current and the database does not have yet is loaded, part by part:
// a part belongs to the taxpayer when its INN and KPP match. Files with such a part are moved into the move
// folder, when there is one, after what they held has reached the disk.
//
// Everything stays as far as it got when something fails: the failure is shown and names the document.
#pragma once

#include "common/text.h"

namespace tav {

// What a load did, for those who tell it to a person.
struct LoadResult {
    int documents = 0;      // statements and acts stored
    int rows = 0;           // lines of statements stored
    int files = 0;          // files with a document of the taxpayer
    int moved = 0;          // of them, moved away
    int known = 0;          // current files passed over because the database has them
    int empty = 0;          // documents not stored because every amount is 0.00
    bool complete = false;  // nothing failed
    int superseded = 0;     // statements that ceased to be, or never were, the current one of their series
};

// `catalogue`: full path of listfiles.xml, whose folder is the source files' too. `inn`: the taxpayer's INN,
// or several between "|". `kpp`: a KPP; 16 characters or more match any. `move_folder`: empty when nothing is
// to be moved.
LoadResult LoadFromXml(TextView catalogue, TextView database, TextView inn, TextView kpp,
                       TextView move_folder);

}  // namespace tav
