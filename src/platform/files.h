// Files and folders. Paths are Text. On Linux any bytes of a name survive (common/text.h); on Windows a
// path may be as long as the file system allows, and a file that another program has open is not replaced.
//
// What the operating system refuses is a Failure that names the path: "File not found" and "Path not found"
// (no such file, no such folder), "Permission denied" (no right, a file held by somebody else), "Disk full",
// else "Path/File access error" with the system's own words.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"

namespace tav {

// What separates the names of a path: "/" on Linux, "\" and "/" on Windows. The first is the one written.
extern const TextView kPathSeparators;
extern const char16_t kPathSeparator;
// Whether a lock stops only those who ask for it.
extern const bool kLocksAreAdvisory;

// The folder with one separator at its end; empty text stays empty.
Text WithSeparator(TextView folder);
// What comes before and after the last separator: "/a/b/" and "c.rtf".
Text FolderOf(TextView path);
Text NameOf(TextView path);
// A path as a person types or pastes it: both "/" and "\" are understood, quotes and spaces around it are no part
// of it, "~" is the user's own folder, and a file's address ("file:///home/a%20b") is the file. A path that exists
// as it is typed is left alone.
Text UserPath(TextView typed);

bool FileExists(TextView path);  // anything but a folder
bool FolderExists(TextView path);
// Whether both name one and the same existing folder, whatever links or letter case the paths go through;
// empty text is the present folder.
bool SameFolder(TextView a, TextView b);

// What shows that a file has changed. No value when the file does not exist. Times are nanoseconds
// since 1970 by the file system's clock, which may go on in steps of kFileClockStep.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t written = 0;  // when its content was said to change last, which anybody may set
    // When it changed last: on Linux also by what cannot be set, as another file that took its name.
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;
};
std::optional<FileStamp> StampOf(TextView path);
inline constexpr std::chrono::milliseconds kFileClockStep{16};

// The path from the root on; a relative one starts at the present folder.
Text AbsolutePath(TextView path);

// The file that a path leads to, through all links; the path itself when the file does not exist.
Text RealPath(TextView path);

// Creates every missing folder on the way to the file, from the
// root down; the last piece, the file name, is not created.
void MakeFolders(TextView file_path);

// The bare names of the folder's plain files (and links to such) that end in `ending` without regard to
// letter case, sorted by their upper-cased names, hidden files included. A missing folder counts as empty.
std::vector<Text> ListFiles(TextView folder, TextView ending);
// The same of those that are wanted, with their stamps.
struct StampedFile {
    Text name;
    FileStamp stamp;
};
std::vector<StampedFile> ListFilesWithStamps(TextView folder, const std::function<bool(TextView)>& wanted);

std::string ReadFile(TextView path);
// The file's first `most` bytes; a shorter file whole.
std::string ReadFileHead(TextView path, std::size_t most);

// Whether a file is on the disk when it has been written, or some time later, which is enough
// for what can be made again.
enum class OnDisk { Now, Later };

// Writes the file whole or not at all: a temporary file in the same folder, then renamed over
// the target. A failure leaves the old file as it was and no temporary file.
// The file says that it was written `earlier` than it was.
void WriteFileWhole(TextView path, std::string_view bytes, std::chrono::nanoseconds earlier = {},
                    OnDisk on_disk = OnDisk::Now);
// Whether a file of that name is what WriteFileWhole leaves when it is killed;
// and its removal, unless somebody still writes it.
bool IsLeftover(TextView name);
void RemoveLeftover(TextView path);
// A new file, written from its beginning to its end under its own name, with the rights of the file `like`. A
// file that is there already is a Failure. Without Finish no file is left, but a kill leaves a part of it.
class NewFile {
 public:
    NewFile(TextView like, TextView path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void Write(std::string_view bytes);
    // The file and its entry in the folder are on the disk when this returns.
    void Finish();

 private:
    struct State;
    std::unique_ptr<State> state_;
};
void DeleteFile(TextView path);

// Whether another program has the file locked, by either kind of lock; also when that cannot be seen.
bool IsHeld(TextView path);

// Moves a file over `target`, replacing it by one rename. Onto another file system: a copy under a temporary
// name there, synced and renamed, then the source is deleted. A whole copy exists at every moment.
void MoveFileOver(TextView source, TextView target);

}  // namespace tav
