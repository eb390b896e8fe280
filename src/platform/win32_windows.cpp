#include "platform/win32_windows.h"

#include <array>

#include "common/concat.h"
#include "platform/files.h"

namespace tav::win32 {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // not in every compiler's headers

constexpr std::array<std::pair<DWORD, RunTimeError>, 20> kMeanings = {{
    {ERROR_FILE_NOT_FOUND, RunTimeError::FileNotFound},
    {ERROR_PATH_NOT_FOUND, RunTimeError::PathNotFound},
    {ERROR_INVALID_DRIVE, RunTimeError::PathNotFound},
    {ERROR_INVALID_NAME, RunTimeError::PathNotFound},
    {ERROR_BAD_PATHNAME, RunTimeError::PathNotFound},
    {ERROR_BAD_NETPATH, RunTimeError::PathNotFound},
    {ERROR_BAD_NET_NAME, RunTimeError::PathNotFound},
    {ERROR_DIRECTORY, RunTimeError::PathNotFound},
    {ERROR_ACCESS_DENIED, RunTimeError::PermissionDenied},
    {ERROR_SHARING_VIOLATION, RunTimeError::PermissionDenied},
    {ERROR_LOCK_VIOLATION, RunTimeError::PermissionDenied},
    {ERROR_NETWORK_ACCESS_DENIED, RunTimeError::PermissionDenied},
    {ERROR_WRITE_PROTECT, RunTimeError::PermissionDenied},
    {ERROR_USER_MAPPED_FILE, RunTimeError::PermissionDenied},
    {ERROR_DELETE_PENDING, RunTimeError::PermissionDenied},
    {ERROR_UNABLE_TO_REMOVE_REPLACED, RunTimeError::PermissionDenied},
    {ERROR_DISK_FULL, RunTimeError::DiskFull},
    {ERROR_HANDLE_DISK_FULL, RunTimeError::DiskFull},
    {kDiskQuotaExceeded, RunTimeError::DiskFull},
    {ERROR_FILE_TOO_LARGE, RunTimeError::DiskFull},
}};

// Called by the system, which no exception may pass through.
BOOL CALLBACK Collect(HWND window, LPARAM list) noexcept try {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
} catch (const std::bad_alloc&) {
    return FALSE;
}

}  // namespace

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(&ThisModule), &module);
    return module;
}

std::wstring ModulePath() {
    return Filled(
        [](wchar_t* buffer, DWORD size) { return ::GetModuleFileNameW(ThisModule(), buffer, size); });
}

std::vector<HWND> ThreadWindows(DWORD thread) {
    std::vector<HWND> windows;
    ::EnumThreadWindows(thread, Collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[257] = L"";  // the longest there is
    return {name, static_cast<std::size_t>(::GetClassNameW(window, name, static_cast<int>(std::size(name))))};
}

Text Variable(const wchar_t* name) {
    return FromWide(
        Filled([&](wchar_t* buffer, DWORD size) { return ::GetEnvironmentVariableW(name, buffer, size); }));
}

std::wstring FullPath(TextView path) {
    const std::wstring typed = Wide(path.empty() ? TextView(u".") : path);
    if (typed.starts_with(L"\\\\?\\")) return typed;
    return Filled([&](wchar_t* buffer, DWORD size) {
        return ::GetFullPathNameW(typed.c_str(), size, buffer, nullptr);
    });
}

std::wstring NativePath(TextView path) {
    std::wstring full = FullPath(path);
    const bool prefixed = full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\");
    if (!prefixed && full.starts_with(L"\\\\")) {
        full.replace(0, 2, L"\\\\?\\UNC\\");
    } else if (!prefixed) {
        full.insert(0, L"\\\\?\\");
    }
    // The separator after a drive is part of its name.
    while (full.ends_with(L'\\') && !full.ends_with(L":\\")) full.pop_back();
    return full;
}

Text ErrorWords(DWORD error) {
    wchar_t words[512];
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                          error, 0, words, static_cast<DWORD>(std::size(words)), nullptr);
    Text text = FromWide({words, length});
    while (text.ends_with(u'\n') || text.ends_with(u'\r') || text.ends_with(u' ')) text.pop_back();
    if (!text.empty()) return text;
    wchar_t number[16];  // COM's results are known in the second form
    ::wsprintfW(number, error <= 0xFFFF ? L"%lu" : L"0x%08lX", error);
    return u"system error " + FromWide(number);
}

void Refuse(DWORD error, TextView path) {
    // A folder that is opened as a file is "access denied" to the system.
    if (error == ERROR_ACCESS_DENIED && FolderExists(path)) throw Failure(RunTimeError::PathFileAccess, path);
    for (const auto& [known, meaning] : kMeanings) {
        if (known == error) throw Failure(meaning, path);
    }
    throw Failure(RunTimeError::PathFileAccess, Concat(path, u" (", ErrorWords(error), u")"));
}

Handle OpenFile(TextView path, DWORD access, DWORD share) {
    if (path.empty()) Refuse(ERROR_FILE_NOT_FOUND, path);  // else it were the present folder
    Handle file(::CreateFileW(NativePath(path).c_str(), access, share, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) Refuse(::GetLastError(), path);
    return file;
}

}  // namespace tav::win32
