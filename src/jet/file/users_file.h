// The ".ldb" file beside a shared database: it lists the users, and each of them holds a lock on bytes of it,
// at offsets beyond its end. Its name may be in any letter case.
#pragma once

#include <optional>

#include "common/text.h"
#include "platform/locked_file.h"

namespace tav::jet {

// Held while a database is written.
class UsersFile {
 public:
    // Refuses a database that others use: whose users' file is locked or cannot be deleted. One that nobody
    // holds is left over from a crash and goes. Where the lock of the database itself stops only those who
    // ask for it, a users' file is made and all its bytes are locked: clients of a file server find the
    // database in use. It is done without in a folder that takes no new file.
    explicit UsersFile(TextView database_path);
    ~UsersFile();
    UsersFile(const UsersFile&) = delete;
    UsersFile& operator=(const UsersFile&) = delete;

 private:
    Text path_;
    std::optional<LockedFile> lock_;
};

}  // namespace tav::jet
