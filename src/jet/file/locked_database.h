// Opens the file of a database with its lock: readers share it, a writer has it alone. What a killed writer
// left half done is undone first.
//
// A file that does not look like a Jet 4 database, is encrypted or asks for a password is refused before
// anything else is read. So is one that other programs hold, if it is to be written or rolled back: by a
// lock, or by a ".ldb" file beside it (users_file.h). And so is one whose journal tells of another state of
// the database, or that has a file of somebody else in the journal's place (rollback_journal.h).
#pragma once

#include <chrono>
#include <memory>

#include "common/text.h"
#include "jet/file/users_file.h"
#include "platform/locked_file.h"

namespace tav::jet {

// How long an open waits for others to let go of the file; at once refused unless set. Ctrl-C that is watched
// for (platform/environment.h) ends the wait.
void SetPatience(std::chrono::seconds patience);

struct LockedDatabase {
    LockedFile file;
    std::unique_ptr<UsersFile> users;  // of a writer; it goes before the lock
};

// The path is a real one, without links.
LockedDatabase OpenLocked(TextView path, LockedFile::Access access);

}  // namespace tav::jet
