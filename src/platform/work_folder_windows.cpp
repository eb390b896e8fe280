#include <filesystem>

#include "common/concat.h"
#include "platform/files.h"
#include "platform/win32_windows.h"
#include "platform/work_folder.h"

namespace tav {

WorkFolder::WorkFolder(TextView target) {
    const auto process = static_cast<long long>(::GetCurrentProcessId());
    for (int number = 1;; ++number) {
        const Text path = Concat(FolderOf(target), u".tav-", Digits(process), u"-", Digits(number));
        if (::CreateDirectoryW(win32::NativePath(path).c_str(), nullptr)) {
            path_ = WithSeparator(path);
            return;
        }
        if (::GetLastError() != ERROR_ALREADY_EXISTS) win32::Refuse(::GetLastError(), target);
    }
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(win32::NativePath(path_), ignored);
}

void WorkFolder::Publish(TextView name, TextView target) const {
    const std::wstring from = win32::NativePath(Concat(path_, name));
    if (!::MoveFileExW(from.c_str(), win32::NativePath(target).c_str(), MOVEFILE_WRITE_THROUGH))
        win32::Refuse(::GetLastError(), target);
}

}  // namespace tav
