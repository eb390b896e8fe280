// A folder for work that is to appear elsewhere when it is complete: temporary, beside the target, so that a
// rename can bring what is in it there. A kill leaves it, until the next one is made there, or an import
// looks; its name is a temporary one (temporary_name.h).
#pragma once

#include <memory>

#include "common/text.h"

namespace tav {

class WorkFolder {
 public:
    // A new folder beside `target`, in place of those that killed programs left. A missing parent, or one that must
    // not be written, is a Failure as of files.h.
    explicit WorkFolder(TextView target);
    ~WorkFolder();  // with all that is still in it
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    // With a separator at its end.
    const Text& path() const { return path_; }

    // Gives the file `name` of this folder, or the folder itself where `name` is empty, the name `target`. What
    // has that name already stays, and a Failure says so.
    void Publish(TextView name, TextView target);

 private:
    struct InUse;

    Text path_;
    std::unique_ptr<InUse> in_use_;  // tells others that it is no leftover
};

// Removes the work folders that killed programs left in a folder.
void RemoveWorkFolders(TextView folder);

// The same of temporary files and work folders. What cannot be seen or removed stays.
void RemoveLeftovers(TextView folder);

}  // namespace tav
