#include "jet/file/users_file.h"

#include "common/concat.h"
#include "common/failure.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

constexpr TextView kExtension = u".ldb";

// The database's path without its extension.
TextView Stem(TextView path) {
    const std::size_t name = path.size() - NameOf(path).size();
    const std::size_t dot = path.rfind(u'.');
    return path.substr(0, dot != TextView::npos && dot >= name ? dot : path.size());
}

void RefuseSharers(TextView path, const Text& users) {
    const Text folder = FolderOf(users);
    const Text name = NameOf(users);
    for (const Text& found : ListFiles(folder, kExtension)) {
        if (!EqualNoCase(found, name)) continue;
        if (IsHeld(folder + found)) throw FileInUse(path);
        try {
            DeleteFile(folder + found);
        } catch (const Failure&) {
            throw FileInUse(path);
        }
    }
}

}  // namespace

UsersFile::UsersFile(TextView database_path) : path_(Concat(Stem(database_path), kExtension)) {
    RefuseSharers(database_path, path_);
    if (!kLocksAreAdvisory) return;
    try {
        NewFile(database_path, path_).Finish();
        lock_.emplace(path_, LockedFile::Access::Write);
    } catch (const Failure&) {
        return;
    }
}

UsersFile::~UsersFile() {
    if (!lock_) return;
    try {
        DeleteFile(path_);
    } catch (...) {
        return;  // it goes with the next open
    }
}

}  // namespace tav::jet
