#include <vector>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/temporary_name.h"
#include "platform/win32_windows.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

// An open folder; none when somebody else forbids that.
win32::Handle Opened(const std::wstring& path, DWORD access, DWORD share) {
    return win32::Handle(::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

// What is in a folder; nothing when it cannot be listed.
std::vector<WIN32_FIND_DATAW> EntriesOf(const std::wstring& folder) {
    std::vector<WIN32_FIND_DATAW> entries;
    WIN32_FIND_DATAW entry{};
    const HANDLE search = ::FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return entries;
    do {
        const std::wstring_view name = entry.cFileName;
        if (name != L"." && name != L"..") entries.push_back(entry);
    } while (::FindNextFileW(search, &entry));
    ::FindClose(search);
    return entries;
}

// As far as it can be removed. Links go, what they lead to stays.
void RemoveAll(const std::wstring& folder) {
    for (const WIN32_FIND_DATAW& entry : EntriesOf(folder)) {
        const std::wstring path = folder + L"\\" + entry.cFileName;
        const bool link = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            ::DeleteFileW(path.c_str());
        } else {
            link ? void(::RemoveDirectoryW(path.c_str())) : RemoveAll(path);
        }
    }
    ::RemoveDirectoryW(folder.c_str());
}

// The same without a separator at its end.
std::wstring FolderPath(TextView folder) {
    std::wstring path = folder.empty() ? L"." : win32::NativePath(folder);
    while (path.ends_with(L'\\')) path.pop_back();
    return path;
}

}  // namespace

// An open folder that forbids others to delete it.
struct WorkFolder::InUse {
    win32::Handle folder;
};

void RemoveWorkFolders(TextView folder) {
    constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::wstring parent = FolderPath(folder);
    for (const WIN32_FIND_DATAW& entry : EntriesOf(parent)) {
        const bool is_folder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!is_folder || !IsLeftover(win32::FromWide(entry.cFileName))) continue;
        const std::wstring path = parent + L"\\" + entry.cFileName;
        if (Opened(path, DELETE, kAll)) RemoveAll(path);
    }
}

WorkFolder::WorkFolder(TextView target) : in_use_(std::make_unique<InUse>()) {
    RemoveWorkFolders(FolderOf(target));
    const auto process = static_cast<long long>(::GetCurrentProcessId());
    for (int number = 1;; ++number) {
        const Text path = Concat(FolderOf(target), kTemporaryName, Digits(process), u"-", Digits(number));
        if (::CreateDirectoryW(win32::NativePath(path).c_str(), nullptr)) {
            path_ = WithSeparator(path);
            in_use_->folder =
                Opened(win32::NativePath(path), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE);
            return;
        }
        if (::GetLastError() != ERROR_ALREADY_EXISTS) win32::Refuse(::GetLastError(), target);
    }
}

WorkFolder::~WorkFolder() {
    in_use_.reset();
    RemoveAll(FolderPath(path_));
}

void WorkFolder::Publish(TextView name, TextView target) {
    in_use_.reset();
    const std::wstring from = win32::NativePath(Concat(path_, name));
    if (!::MoveFileExW(from.c_str(), win32::NativePath(target).c_str(), MOVEFILE_WRITE_THROUGH))
        win32::Refuse(::GetLastError(), target);
}

}  // namespace tav
