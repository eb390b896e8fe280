#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

#include "common/concat.h"
#include "common/get_next.h"
#include "platform/files.h"
#include "platform/listing.h"
#include "platform/posix_linux.h"
#include "platform/temporary_name.h"

namespace tav {

using posix::Descriptor;
using posix::ReadInto;
using posix::Refuse;

const TextView kPathSeparators = u"/";
const char16_t kPathSeparator = u'/';
const bool kLocksAreAdvisory = true;

namespace posix {

void Refuse(int error, TextView path) {
    switch (error) {
        case ENOENT: {
            const bool folder = FolderOf(path).empty() || FolderExists(FolderOf(path));
            throw Failure(folder ? RunTimeError::FileNotFound : RunTimeError::PathNotFound, path);
        }
        case ENOTDIR:
            throw Failure(RunTimeError::PathNotFound, path);
        case EACCES:
        case EPERM:
        case EROFS:
        case EBUSY:
        case ETXTBSY:
        case EWOULDBLOCK:
            throw Failure(RunTimeError::PermissionDenied, path);
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            throw Failure(RunTimeError::DiskFull, path);
        default:
            throw Failure(RunTimeError::PathFileAccess,
                          Concat(path, u" (", FromUtf8(std::strerror(error)), u")"));
    }
}

bool IsRangeHeld(const Descriptor& file) {
    struct flock range {};
    range.l_type = F_WRLCK;
    return ::fcntl(file.number(), F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

std::size_t ReadInto(const Descriptor& file, TextView path, char* buffer, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t got = ::read(file.number(), buffer + filled, size - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EISDIR) throw Failure(RunTimeError::PathFileAccess, path);
        if (got < 0) Refuse(errno, path);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

void WriteAll(const Descriptor& file, std::string_view bytes, TextView path) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Refuse(errno, path);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace posix

namespace {

std::string Native(TextView path) {
    return ToUtf8(path);
}

bool Status(TextView path, struct stat& status) {
    return ::stat(Native(path).c_str(), &status) == 0;
}

Descriptor OpenForReading(TextView path) {
    Descriptor file(::open(Native(path).c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) Refuse(errno, path);
    return file;
}

// A file that exists and that somebody else holds, or that must not be written, is not replaced.
void RefuseHeldFile(TextView path) {
    const std::string native = Native(path);
    if (!FileExists(path)) return;
    if (::access(native.c_str(), W_OK) != 0) Refuse(errno, path);
    if (IsHeld(path)) Refuse(EWOULDBLOCK, path);
}

// A file created or deleted in the folder stays so across a power loss; else the error. Some file systems
// cannot sync a folder and need not.
int SyncFolder(TextView folder) {
    const Descriptor descriptor(
        ::open(folder.empty() ? "." : Native(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor) return errno;
    return ::fsync(descriptor.number()) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

constexpr std::int64_t kNanoseconds = 1'000'000'000;

std::int64_t Nanoseconds(const timespec& time) {
    return time.tv_sec * kNanoseconds + time.tv_nsec;
}

// A time of content in the future was set by somebody and says nothing. The time of the record is the
// system's own and goes with every change of content.
FileStamp StampOf(const struct stat& status) {
    const std::int64_t content = Nanoseconds(status.st_mtim);
    const std::int64_t record = Nanoseconds(status.st_ctim);
    FileStamp stamp{static_cast<std::uint64_t>(status.st_size), std::min(content, record), record};
    if (content <= record) return stamp;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (content <= Nanoseconds(now)) stamp.changed = content;
    return stamp;
}

constexpr std::size_t kTemporaryLetters = 6;

// A new file beside `target` that becomes `target` by Rename, and goes if it does not get there.
class ReplacementFile {
 public:
    ReplacementFile(TextView target, mode_t mode) : target_(target) {
        // Locked, so that nobody takes it for a leftover; who was quicker has it gone.
        do {
            pattern_ = Native(FolderOf(target_).append(kTemporaryName)) + std::string(kTemporaryLetters, 'X');
            file_ = Descriptor(::mkostemp(pattern_.data(), O_CLOEXEC));
            if (!file_) Refuse(errno, target_);
            ::flock(file_.number(), LOCK_EX);
        } while (::access(pattern_.c_str(), F_OK) != 0 && errno == ENOENT);
        ::fchmod(file_.number(), mode);
    }
    ~ReplacementFile() {
        if (!renamed_) ::unlink(pattern_.c_str());
    }
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    void Write(std::string_view bytes) { posix::WriteAll(file_, bytes, target_); }
    void SetBack(std::chrono::nanoseconds time) {
        struct stat status {};
        if (::fstat(file_.number(), &status) != 0) Refuse(errno, target_);
        const std::int64_t written = Nanoseconds(status.st_mtim) - time.count();
        status.st_mtim = {written / kNanoseconds, written % kNanoseconds};
        SetTimes(status);
    }
    void SetTimes(const struct stat& status) {
        const timespec times[2] = {status.st_atim, status.st_mtim};
        ::futimens(file_.number(), times);
    }
    void Rename(OnDisk on_disk = OnDisk::Now) {
        if (on_disk == OnDisk::Now && ::fsync(file_.number()) != 0) Refuse(errno, target_);
        if (::rename(pattern_.c_str(), Native(target_).c_str()) != 0) Refuse(errno, target_);
        renamed_ = true;
        ::flock(file_.number(), LOCK_UN);
        // The new file is in place, whatever this says.
        if (on_disk == OnDisk::Now) SyncFolder(FolderOf(target_));
    }

 private:
    Text target_;
    std::string pattern_;
    Descriptor file_;
    bool renamed_ = false;
};

// Hands on the folder's wanted names: take(descriptor of the folder, entry, name). A folder that is not
// there has none.
template <class Wanted, class Take>
void ForEachName(TextView folder, Wanted&& wanted, Take take) {
    const Text prefix = WithSeparator(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(
        ::opendir(prefix.empty() ? "." : Native(prefix).c_str()), ::closedir);
    if (listing == nullptr) {
        if (errno == ENOENT || errno == ENOTDIR) return;
        Refuse(errno, folder);
    }
    while (true) {
        errno = 0;
        const dirent* const entry = ::readdir(listing.get());
        if (entry == nullptr) break;
        Text name = FromUtf8(entry->d_name);
        if (wanted(name)) take(::dirfd(listing.get()), *entry, std::move(name));
    }
    if (errno != 0) Refuse(errno, folder);
}

// Of an entry of a listing. A name that leads nowhere has none; where the system cannot tell, nobody may take the file
// for one that has gone.
bool StatusOf(int listing, const dirent& entry, TextView folder, struct stat& status) {
    if (::fstatat(listing, entry.d_name, &status, 0) == 0) return true;
    if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP && errno != EACCES) Refuse(errno, folder);
    return false;
}

// The rights of the file that is replaced, or those of a new one.
mode_t ModeFor(TextView target) {
    struct stat status {};
    if (Status(target, status)) return status.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Hands the file's bytes on in pieces.
template <class Take>
void ReadPieces(const Descriptor& file, TextView path, Take take) {
    std::string buffer(1 << 16, '\0');
    while (const std::size_t got = ReadInto(file, path, buffer.data(), buffer.size())) {
        take(std::string_view(buffer).substr(0, got));
    }
}

void CopyOver(TextView source, TextView target) {
    const Descriptor file = OpenForReading(source);
    struct stat status {};
    ::fstat(file.number(), &status);
    ReplacementFile replacement(target, status.st_mode & 0777);
    ReadPieces(file, source, [&](std::string_view piece) { replacement.Write(piece); });
    replacement.SetTimes(status);
    replacement.Rename();
}

}  // namespace

bool FileExists(TextView path) {
    struct stat status {};
    return Status(path, status) && !S_ISDIR(status.st_mode);
}

bool FolderExists(TextView path) {
    struct stat status {};
    return Status(path, status) && S_ISDIR(status.st_mode);
}

std::optional<FileStamp> StampOf(TextView path) {
    struct stat status {};
    if (!Status(path, status)) return std::nullopt;
    return StampOf(status);
}

bool SameFolder(TextView a, TextView b) {
    struct stat first {};
    struct stat second {};
    const auto folder = [](TextView path) { return path.empty() ? TextView(u".") : path; };
    return Status(folder(a), first) && Status(folder(b), second) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// Without "." between the names. ".." stays: behind a link it does not lead back.
Text AbsolutePath(TextView path) {
    const std::filesystem::path whole = std::filesystem::absolute(Native(path));
    const bool leads_back = std::find(whole.begin(), whole.end(), "..") != whole.end();
    return FromUtf8((leads_back ? whole : whole.lexically_normal()).string());
}

Text RealPath(TextView path) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(Native(path).c_str(), nullptr), std::free);
    return real == nullptr ? Text(path) : FromUtf8(real.get());
}

void MakeFolders(TextView file_path) {
    TextView rest = file_path;
    Text folder;
    while (rest.find(kPathSeparator) != TextView::npos) {
        folder.append(GetNext(rest, TextView(&kPathSeparator, 1))) += kPathSeparator;
        if (!FolderExists(folder) && ::mkdir(Native(folder).c_str(), 0777) != 0 && !FolderExists(folder)) {
            Refuse(errno == EEXIST ? ENOTDIR : errno, folder);
        }
    }
}

std::vector<Text> ListFiles(TextView folder, TextView ending) {
    Listing<Text> found;
    const auto wanted = [&](TextView name) { return EqualNoCase(Right(name, ending.size()), ending); };
    ForEachName(folder, wanted, [&](int listing, const dirent& entry, const Text& name) {
        struct stat status {};
        const bool plain =
            entry.d_type == DT_REG || (StatusOf(listing, entry, folder, status) && S_ISREG(status.st_mode));
        if (plain) found.Add(UpperCase(name), name);
    });
    return found.Sorted();
}

std::vector<StampedFile> ListFilesWithStamps(TextView folder, const std::function<bool(TextView)>& wanted) {
    Listing<StampedFile> found;
    ForEachName(folder, wanted, [&](int listing, const dirent& entry, Text name) {
        struct stat status {};
        if (!StatusOf(listing, entry, folder, status) || !S_ISREG(status.st_mode)) return;
        Text upper = UpperCase(name);
        found.Add(std::move(upper), {std::move(name), StampOf(status)});
    });
    return found.Sorted();
}

std::string ReadFile(TextView path) {
    const Descriptor file = OpenForReading(path);
    struct stat status {};
    ::fstat(file.number(), &status);
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1);
    ReadPieces(file, path, [&](std::string_view piece) { bytes.append(piece); });
    return bytes;
}

std::string ReadFileHead(TextView path, std::size_t most) {
    const Descriptor file = OpenForReading(path);
    std::string bytes(most, '\0');
    bytes.resize(ReadInto(file, path, bytes.data(), most));
    return bytes;
}

void WriteFileWhole(TextView path, std::string_view bytes, std::chrono::nanoseconds earlier, OnDisk on_disk) {
    RefuseHeldFile(path);
    const Text target = RealPath(path);  // a replacement keeps the link
    ReplacementFile replacement(target, ModeFor(target));
    replacement.Write(bytes);
    if (earlier.count() > 0) replacement.SetBack(earlier);
    replacement.Rename(on_disk);
}

bool IsLeftover(TextView name) {
    return name.starts_with(kTemporaryName) && name.size() == kTemporaryName.size() + kTemporaryLetters;
}

void RemoveLeftover(TextView path) {
    const std::string native = Native(path);
    const Descriptor file(::open(native.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0) ::unlink(native.c_str());
}

struct NewFile::State {
    Text path;
    std::string native;
    Descriptor file;
    bool finished = false;
};

NewFile::NewFile(TextView like, TextView path) : state_(std::make_unique<State>()) {
    state_->path = path;
    state_->native = Native(path);
    state_->file = Descriptor(::open(state_->native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!state_->file) Refuse(errno, path);
    if (::fchmod(state_->file.number(), ModeFor(like) & 0777) == 0) return;
    const int error = errno;
    ::unlink(state_->native.c_str());
    Refuse(error, path);
}

NewFile::~NewFile() {
    if (!state_->finished) ::unlink(state_->native.c_str());
}

void NewFile::Write(std::string_view bytes) {
    posix::WriteAll(state_->file, bytes, state_->path);
}

void NewFile::Finish() {
    if (::fsync(state_->file.number()) != 0) Refuse(errno, state_->path);
    const Text folder = FolderOf(state_->path);
    if (const int error = SyncFolder(folder); error != 0) Refuse(error, folder);
    state_->finished = true;
}

void DeleteFile(TextView path) {
    if (::unlink(Native(path).c_str()) != 0) Refuse(errno, path);
}

bool IsHeld(TextView path) {
    const std::string native = Native(path);
    Descriptor file(::open(native.c_str(), O_RDWR | O_CLOEXEC));
    if (!file) file = Descriptor(::open(native.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) return true;
    return posix::IsRangeHeld(file) || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0;
}

void MoveFileOver(TextView source, TextView target) {
    if (::rename(Native(source).c_str(), Native(target).c_str()) == 0) return;
    if (errno != EXDEV) Refuse(errno, source);
    CopyOver(source, target);
    DeleteFile(source);
}

}  // namespace tav
