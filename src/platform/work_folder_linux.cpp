#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/posix_linux.h"
#include "platform/temporary_name.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

// The folder itself, locked; none when it is no folder, or in use.
posix::Descriptor Locked(const std::string& path) {
    posix::Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (folder && ::flock(folder.number(), LOCK_EX | LOCK_NB) != 0) return {};
    return folder;
}

}  // namespace

struct WorkFolder::InUse {
    posix::Descriptor folder;
};

void RemoveWorkFolders(TextView folder) {
    std::error_code ignored;
    // The iterators of the standard library end the program where memory runs out.
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(
        ::opendir(folder.empty() ? "." : ToUtf8(folder).c_str()), ::closedir);
    if (listing == nullptr) return;
    while (const dirent* entry = ::readdir(listing.get())) {
        if (!IsLeftover(FromUtf8(entry->d_name))) continue;
        const std::string path = ToUtf8(WithSeparator(folder)) + entry->d_name;
        const posix::Descriptor leftover = Locked(path);
        if (leftover) std::filesystem::remove_all(path, ignored);
    }
}

WorkFolder::WorkFolder(TextView target) : in_use_(std::make_unique<InUse>()) {
    RemoveWorkFolders(FolderOf(target));
    constexpr std::size_t kLetters = 6;
    std::string pattern = ToUtf8(FolderOf(target).append(kTemporaryName)) + std::string(kLetters, 'X');
    path_ = WithSeparator(FromUtf8(pattern));
    if (::mkdtemp(pattern.data()) == nullptr) posix::Refuse(errno, target);
    // From here on nothing fails: nobody would remove the folder.
    std::copy(pattern.end() - kLetters, pattern.end(), path_.end() - kLetters - 1);
    in_use_->folder = Locked(pattern);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(pattern.c_str(), 0777 & ~mask);
}

WorkFolder::~WorkFolder() {
    try {
        std::filesystem::remove_all(ToUtf8(path_));
    } catch (...) {
        return;  // it goes another time
    }
}

void WorkFolder::Publish(TextView name, TextView target) {
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
