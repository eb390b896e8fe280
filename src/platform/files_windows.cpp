#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <tuple>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/listing.h"
#include "platform/temporary_name.h"
#include "platform/win32_windows.h"

namespace tav {

using win32::Handle;
using win32::NativePath;
using win32::OpenFile;
using win32::ReadInto;
using win32::Refuse;
using win32::TemporaryName;

const TextView kPathSeparators = u"\\/";
const char16_t kPathSeparator = u'\\';
const bool kLocksAreAdvisory = false;

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool IsSeparator(char16_t c) {
    return kPathSeparators.find(c) != TextView::npos;
}

std::optional<DWORD> Attributes(TextView path) {
    const DWORD attributes = ::GetFileAttributesW(NativePath(path).c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? std::nullopt : std::optional(attributes);
}

void WriteAll(const Handle& file, std::string_view bytes, TextView path) {
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 30));
        if (!::WriteFile(file.get(), bytes.data(), piece, &written, nullptr)) Refuse(::GetLastError(), path);
        bytes.remove_prefix(written);
    }
}

void Sync(const Handle& file, TextView path) {
    if (!::FlushFileBuffers(file.get())) Refuse(::GetLastError(), path);
}

constexpr std::int64_t kNanosecondsOfTick = 100;  // of the file system's clock

std::uint64_t Ticks(const FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// Of what the system finds out about a file, by its name or in a listing.
template <class Found>
FileStamp StampFrom(const Found& found) {
    constexpr std::uint64_t kYear1970 =
        116444736000000000ULL;  // in ticks; nanoseconds since 1601 are too many
    const std::int64_t written =
        static_cast<std::int64_t>(Ticks(found.ftLastWriteTime) - kYear1970) * kNanosecondsOfTick;
    return {std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow, written, written};
}

// The file says that it was written earlier than it was.
void SetBack(const Handle& file, std::chrono::nanoseconds time, TextView path) {
    FILETIME written{};
    if (!::GetFileTime(file.get(), nullptr, nullptr, &written)) Refuse(::GetLastError(), path);
    const std::uint64_t ticks =
        Ticks(written) - static_cast<std::uint64_t>(time.count() / kNanosecondsOfTick);
    written = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    if (!::SetFileTime(file.get(), nullptr, nullptr, &written)) Refuse(::GetLastError(), path);
}

}  // namespace

std::size_t win32::ReadInto(const Handle& file, TextView path, char* buffer, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        DWORD got = 0;
        const auto piece = static_cast<DWORD>(std::min<std::size_t>(size - filled, 1 << 30));
        if (!::ReadFile(file.get(), buffer + filled, piece, &got, nullptr)) Refuse(::GetLastError(), path);
        if (got == 0) break;
        filled += got;
    }
    return filled;
}

Text win32::TemporaryName(TextView target) {
    static unsigned counter = 0;
    for (;;) {
        const auto ticks = static_cast<long long>(::GetTickCount64());
        Text name = Concat(FolderOf(target), kTemporaryName, Digits(::GetCurrentProcessId()), u"-",
                           Digits(ticks), u"-", Digits(++counter));
        if (!Attributes(name)) return name;
    }
}

namespace {

// A file that goes at the end of the scope, unless it has become another by then.
class TemporaryFile {
 public:
    explicit TemporaryFile(TextView target) : name_(TemporaryName(target)), native_(NativePath(name_)) {}
    ~TemporaryFile() {
        if (moved_) return;
        ::SetFileAttributesW(native_.c_str(), FILE_ATTRIBUTE_NORMAL);  // a read-only file is not deleted
        ::DeleteFileW(native_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const Text& name() const { return name_; }
    const std::wstring& native() const { return native_; }

    void MoveOver(TextView target) {
        if (!::MoveFileExW(native_.c_str(), NativePath(target).c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            Refuse(::GetLastError(), target);
        moved_ = true;
    }
    // The target's rights and attributes stay as they are, where the file system and the rights to the folder
    // allow that. A scanner may hold a new file for a moment.
    void Replace(TextView target) {
        constexpr DWORD kFlags = REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS;
        constexpr DWORD kMilliseconds = 50;
        const std::wstring replaced = NativePath(target);
        for (int tries = 0; tries < 3 && !moved_; ++tries) {
            if (tries > 0) ::Sleep(kMilliseconds);
            moved_ = ::ReplaceFileW(replaced.c_str(), native_.c_str(), nullptr, kFlags, nullptr, nullptr);
        }
        if (moved_) return;
        if (Attributes(target).value_or(0) & FILE_ATTRIBUTE_READONLY) Refuse(ERROR_ACCESS_DENIED, target);
        MoveOver(target);
    }

 private:
    Text name_;
    std::wstring native_;
    bool moved_ = false;
};

void CopyOver(TextView source, TextView target) {
    TemporaryFile copy(target);
    if (!::CopyFileW(NativePath(source).c_str(), copy.native().c_str(), TRUE))
        Refuse(::GetLastError(), source);
    // A read-only file cannot be synced; the copy is one again afterwards.
    const DWORD attributes = ::GetFileAttributesW(copy.native().c_str());
    ::SetFileAttributesW(copy.native().c_str(), FILE_ATTRIBUTE_NORMAL);
    Sync(OpenFile(copy.name(), GENERIC_WRITE, 0), target);
    ::SetFileAttributesW(copy.native().c_str(), attributes);
    copy.MoveOver(target);
    ::SetFileAttributesW(NativePath(source).c_str(), FILE_ATTRIBUTE_NORMAL);
}

// A file that exists and that somebody has open without letting others delete it is not
// replaced. The system would refuse that too, but may leave a temporary file of its own.
void RefuseHeldFile(TextView path) {
    if (Attributes(path)) OpenFile(path, DELETE, kShareAll);
}

// With links and drives resolved; empty when the system does not say.
std::wstring FinalPath(const Handle& file) {
    return win32::Filled([&](wchar_t* buffer, DWORD size) {
        return ::GetFinalPathNameByHandleW(file.get(), buffer, size, FILE_NAME_NORMALIZED);
    });
}

// The rights of the file as the system keeps them; empty when they cannot be read.
std::string RightsOf(TextView path) {
    const std::wstring native = NativePath(path);
    DWORD size = 0;
    ::GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::string rights(size, '\0');
    if (!::GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size)) return {};
    return rights;
}

// The length of what names the drive or the network folder: no folder can be made there.
std::size_t RootLength(TextView path) {
    std::size_t at = 0;
    std::size_t names = 0;  // of server and share
    if (path.starts_with(u"\\\\?\\UNC\\")) {
        at = 8;
        names = 2;
    } else if (path.starts_with(u"\\\\?\\")) {
        at = 4;
    } else if (path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        at = 2;
        names = 2;
    }
    if (names == 0 && at + 1 < path.size() && path[at + 1] == u':') at += 2;
    for (; names > 0 && at < path.size(); ++at) names -= IsSeparator(path[at]) ? 1 : 0;
    return at;
}

}  // namespace

bool FileExists(TextView path) {
    if (path.empty() || IsSeparator(path.back())) return false;
    const auto attributes = Attributes(path);
    return attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(TextView path) {
    const auto attributes = path.empty() ? std::nullopt : Attributes(path);
    return attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::optional<FileStamp> StampOf(TextView path) {
    WIN32_FILE_ATTRIBUTE_DATA found{};
    if (!::GetFileAttributesExW(NativePath(path).c_str(), GetFileExInfoStandard, &found)) return std::nullopt;
    return StampFrom(found);
}

bool SameFolder(TextView a, TextView b) {
    using Identity = std::tuple<DWORD, DWORD, DWORD, std::wstring>;
    const auto identity = [](TextView path) -> std::optional<Identity> {
        const Handle folder(::CreateFileW(NativePath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                          FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        BY_HANDLE_FILE_INFORMATION found{};
        if (!folder || !::GetFileInformationByHandle(folder.get(), &found)) return std::nullopt;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return std::nullopt;
        // Some network file systems have no numbers, but do tell the path with drives and links resolved.
        const bool numbered = found.nFileIndexHigh != 0 || found.nFileIndexLow != 0;
        return Identity(found.dwVolumeSerialNumber, found.nFileIndexHigh, found.nFileIndexLow,
                        numbered ? std::wstring() : FinalPath(folder));
    };
    const auto first = identity(a);
    return first && first == identity(b);
}

Text AbsolutePath(TextView path) {
    return win32::FromWide(win32::FullPath(path));
}

// Only a link leads elsewhere; any other path stays as it was given, because messages show it.
Text RealPath(TextView path) {
    const auto attributes = Attributes(path);
    if (!attributes || (*attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return Text(path);
    const Handle file(::CreateFileW(NativePath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const std::wstring real = file ? FinalPath(file) : std::wstring();
    if (real.starts_with(L"\\\\?\\UNC\\")) return u"\\" + win32::FromWide(real).substr(7);
    return real.empty() ? Text(path) : win32::FromWide(real).substr(real.starts_with(L"\\\\?\\") ? 4 : 0);
}

void MakeFolders(TextView file_path) {
    for (std::size_t at = RootLength(file_path); at < file_path.size(); ++at) {
        if (!IsSeparator(file_path[at])) continue;
        const TextView folder = file_path.substr(0, at);
        if (folder.empty() || FolderExists(folder)) continue;
        if (::CreateDirectoryW(NativePath(folder).c_str(), nullptr) || FolderExists(folder)) continue;
        const DWORD error = ::GetLastError();
        Refuse(error == ERROR_ALREADY_EXISTS ? ERROR_DIRECTORY : error, folder);
    }
}

std::vector<Text> ListFiles(TextView folder, TextView ending) {
    std::vector<Text> names;
    const auto wanted = [&](TextView name) { return EqualNoCase(Right(name, ending.size()), ending); };
    for (StampedFile& file : ListFilesWithStamps(folder, wanted)) names.push_back(std::move(file.name));
    return names;
}

// Patterns of the system would also match short names ("x.rtfx" has one that ends in ".RTF"), so all names
// are looked at.
std::vector<StampedFile> ListFilesWithStamps(TextView folder, const std::function<bool(TextView)>& wanted) {
    WIN32_FIND_DATAW entry{};
    const std::wstring native = NativePath(folder);
    const HANDLE search =
        ::FindFirstFileExW((native + (native.ends_with(L'\\') ? L"*" : L"\\*")).c_str(), FindExInfoBasic,
                           &entry, FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        if (!FolderExists(folder) || error == ERROR_FILE_NOT_FOUND) return {};
        Refuse(error, folder);
    }
    const std::unique_ptr<void, decltype(&::FindClose)> owner(search, ::FindClose);
    Listing<StampedFile> listing;
    do {
        Text name = win32::FromWide(entry.cFileName);
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 || !wanted(name)) continue;
        Text upper = UpperCase(name);
        listing.Add(std::move(upper), {std::move(name), StampFrom(entry)});
    } while (::FindNextFileW(search, &entry));
    if (const DWORD error = ::GetLastError(); error != ERROR_NO_MORE_FILES) Refuse(error, folder);
    return listing.Sorted();
}

std::string ReadFile(TextView path) {
    const Handle file = OpenFile(path, GENERIC_READ, kShareAll);
    LARGE_INTEGER size{};
    ::GetFileSizeEx(file.get(), &size);
    std::string bytes;
    if (static_cast<std::uint64_t>(size.QuadPart) > bytes.max_size())
        throw Failure(RunTimeError::OutOfMemory, path);
    bytes.resize(static_cast<std::size_t>(size.QuadPart));
    bytes.resize(ReadInto(file, path, bytes.data(), bytes.size()));
    return bytes;
}

std::string ReadFileHead(TextView path, std::size_t most) {
    const Handle file = OpenFile(path, GENERIC_READ, kShareAll);
    std::string bytes(most, '\0');
    bytes.resize(ReadInto(file, path, bytes.data(), most));
    return bytes;
}

void WriteFileWhole(TextView path, std::string_view bytes, std::chrono::nanoseconds earlier, OnDisk on_disk) {
    const Text target = RealPath(path);  // a replacement keeps the link
    RefuseHeldFile(target);
    TemporaryFile replacement(target);
    {
        const Handle file(::CreateFileW(replacement.native().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) Refuse(::GetLastError(), path);
        WriteAll(file, bytes, path);
        if (earlier.count() > 0) SetBack(file, earlier, path);
        if (on_disk == OnDisk::Now) Sync(file, path);
    }
    if (Attributes(target)) {
        replacement.Replace(target);
    } else {
        replacement.MoveOver(target);
    }
}

// The name goes on with three numbers.
bool IsLeftover(TextView name) {
    return name.starts_with(kTemporaryName) &&
           name.find_first_not_of(u"0123456789-", kTemporaryName.size()) == name.npos;
}

// A file that somebody still writes is not shared, so it cannot be deleted.
void RemoveLeftover(TextView path) {
    ::DeleteFileW(NativePath(path).c_str());
}

struct NewFile::State {
    Text path;
    Handle file;
    bool finished = false;
};

// The system writes the folder's entry through with the file.
NewFile::NewFile(TextView like, TextView path) : state_(std::make_unique<State>()) {
    std::string rights = RightsOf(like);
    SECURITY_ATTRIBUTES security{sizeof security, rights.empty() ? nullptr : rights.data(), FALSE};
    state_->path = path;
    state_->file = Handle(::CreateFileW(NativePath(path).c_str(), GENERIC_WRITE | DELETE, 0, &security,
                                        CREATE_NEW, FILE_FLAG_WRITE_THROUGH, nullptr));
    if (!state_->file) Refuse(::GetLastError(), path);
}

NewFile::~NewFile() {
    if (state_->finished) return;
    FILE_DISPOSITION_INFO gone{TRUE};
    ::SetFileInformationByHandle(state_->file.get(), FileDispositionInfo, &gone, sizeof gone);
}

void NewFile::Write(std::string_view bytes) {
    WriteAll(state_->file, bytes, state_->path);
}

void NewFile::Finish() {
    Sync(state_->file, state_->path);
    state_->finished = true;
}

void DeleteFile(TextView path) {
    if (!::DeleteFileW(NativePath(path).c_str())) Refuse(::GetLastError(), path);
}

bool IsHeld(TextView path) {
    const std::wstring native = NativePath(path);
    return !Handle(::CreateFileW(native.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

void MoveFileOver(TextView source, TextView target) {
    if (::MoveFileExW(NativePath(source).c_str(), NativePath(target).c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return;
    const DWORD error = ::GetLastError();
    if (error != ERROR_NOT_SAME_DEVICE) {
        RefuseHeldFile(target);  // names it, where it is what is in the way
        const bool read_only = (Attributes(target).value_or(0) & FILE_ATTRIBUTE_READONLY) != 0;
        Refuse(error, error == ERROR_ACCESS_DENIED && read_only ? target : source);
    }
    CopyOver(source, target);
    DeleteFile(source);
}

}  // namespace tav
