#include "platform/work_folder.h"

#include "platform/files.h"

namespace tav {

void RemoveLeftovers(TextView folder) {
    if (folder.empty()) return;
    try {
        for (const StampedFile& file : ListFilesWithStamps(folder, IsLeftover))
            RemoveLeftover(WithSeparator(folder).append(file.name));
        RemoveWorkFolders(folder);
    } catch (...) {
        return;  // they harm nobody, and go another time
    }
}

}  // namespace tav
