#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/posix_linux.h"
#include "platform/work_folder.h"

namespace tav {

WorkFolder::WorkFolder(TextView target) {
    std::string pattern = ToUtf8(FolderOf(target)) + ".tav-" + std::string(6, 'X');
    if (::mkdtemp(pattern.data()) == nullptr) posix::Refuse(errno, target);
    path_ = WithSeparator(FromUtf8(pattern));
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(pattern.c_str(), 0777 & ~mask);
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(ToUtf8(path_), ignored);
}

void WorkFolder::Publish(TextView name, TextView target) const {
    const std::string from = ToUtf8(Concat(path_, name));
    const std::string to = ToUtf8(target);
    int result = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
    // Some file systems cannot look and rename in one step.
    if (result != 0 && errno == EINVAL) {
        struct stat status {};
        errno = EEXIST;
        result = ::lstat(to.c_str(), &status) == 0 ? -1 : ::rename(from.c_str(), to.c_str());
    }
    if (result != 0) posix::Refuse(errno, target);
    const Text folder = FolderOf(target);
    const posix::Descriptor parent(
        ::open(folder.empty() ? "." : ToUtf8(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent) ::fsync(parent.number());  // the new name is there, whatever this says
}

}  // namespace tav
