// What a part of the registry holds, to be compared with what it held before.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32_windows.h"

namespace tav::test {

inline void ListKey(HKEY parent, const std::wstring& path, std::vector<std::string>& lines) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    lines.push_back(ToUtf8(win32::FromWide(path)));
    std::wstring name(MAX_PATH, L'\0');
    std::string bytes(1 << 16, '\0');
    DWORD name_size = MAX_PATH;
    DWORD size = static_cast<DWORD>(bytes.size());
    DWORD type = 0;
    for (DWORD i = 0; ::RegEnumValueW(key, i, name.data(), &name_size, nullptr, &type,
                                      reinterpret_cast<BYTE*>(bytes.data()), &size) == ERROR_SUCCESS;
         ++i) {
        const auto* text = reinterpret_cast<const wchar_t*>(bytes.data());
        const std::wstring value = type == REG_SZ ? std::wstring(text, size / 2 - (size >= 2 ? 1 : 0))
                                                  : std::wstring(bytes.begin(), bytes.begin() + size);
        lines.push_back(ToUtf8(win32::FromWide(path + L"\\" + name.substr(0, name_size) + L"=" + value)));
        name_size = MAX_PATH;
        size = static_cast<DWORD>(bytes.size());
    }
    std::vector<std::wstring> children;
    for (DWORD i = 0; ::RegEnumKeyExW(key, i, name.data(), &name_size, nullptr, nullptr, nullptr, nullptr) ==
                      ERROR_SUCCESS;
         ++i) {
        children.push_back(name.substr(0, name_size));
        name_size = MAX_PATH;
    }
    ::RegCloseKey(key);
    for (const std::wstring& child : children) ListKey(parent, path + L"\\" + child, lines);
}

// The classes of the machine or the user, a line for each key and value, sorted. What the 32-bit half shows
// of keys that both halves share is left out.
inline std::vector<std::string> Classes(HKEY hive) {
    std::vector<std::string> lines;
    ListKey(hive, L"Software\\Classes", lines);
    std::erase_if(lines, [](const std::string& line) {
        return line.starts_with("Software\\Classes\\Wow6432Node\\TypeLib");
    });
    for (std::string& line : lines) {
        if (const auto at = line.find("\\Typelib"); at != std::string::npos) line[at + 5] = 'L';
    }
    std::ranges::sort(lines);
    return lines;
}

}  // namespace tav::test
