#include <filesystem>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/win32_windows.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

// An open folder; none when somebody else forbids that.
win32::Handle Opened(const std::wstring& path, DWORD access, DWORD share) {
    return win32::Handle(::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

}  // namespace

// An open folder that forbids others to delete it.
struct WorkFolder::InUse {
    win32::Handle folder;
};

void RemoveWorkFolders(TextView folder) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    fs::directory_iterator entry(folder.empty() ? L"." : win32::NativePath(folder), ignored);
    for (; entry != fs::directory_iterator(); entry.increment(ignored)) {
        const fs::path& path = entry->path();
        if (!entry->is_directory(ignored) || !IsLeftover(win32::FromWide(path.filename().wstring())))
            continue;
        constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        if (Opened(path.wstring(), DELETE, kAll)) fs::remove_all(path, ignored);
    }
}

WorkFolder::WorkFolder(TextView target) : in_use_(std::make_unique<InUse>()) {
    RemoveWorkFolders(FolderOf(target));
    const auto process = static_cast<long long>(::GetCurrentProcessId());
    for (int number = 1;; ++number) {
        const Text path = Concat(FolderOf(target), u".tav-", Digits(process), u"-", Digits(number));
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
    std::error_code ignored;
    std::filesystem::remove_all(win32::NativePath(path_), ignored);
}

void WorkFolder::Publish(TextView name, TextView target) {
    in_use_.reset();
    const std::wstring from = win32::NativePath(Concat(path_, name));
    if (!::MoveFileExW(from.c_str(), win32::NativePath(target).c_str(), MOVEFILE_WRITE_THROUGH))
        win32::Refuse(::GetLastError(), target);
}

}  // namespace tav
