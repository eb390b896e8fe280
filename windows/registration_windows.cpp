#include "registration_windows.h"

#include <array>
#include <string>

#include "platform/environment.h"
#include "platform/win32_windows.h"
#include "registration_rows_windows.h"

namespace tav {
namespace {

// The half of the registry that the other width of the component sees.
constexpr REGSAM kOtherHalf = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
constexpr wchar_t kWidth[] = TAV_WIN;

class Key {
 public:
    Key() = default;
    ~Key() {
        if (key_ != nullptr) ::RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS Open(HKEY parent, const std::wstring& path, REGSAM access) {
        return ::RegOpenKeyExW(parent, path.c_str(), 0, access, &key_);
    }
    LSTATUS Create(HKEY parent, const std::wstring& path) {
        return ::RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key_,
                                 nullptr);
    }
    HKEY get() const { return key_; }

 private:
    HKEY key_ = nullptr;
};

// All the rows are below it in its hive.
constexpr wchar_t kClasses[] = L"Software\\Classes";

HKEY HiveOf(Whose whose) {
    return whose == Whose::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

void Replace(std::wstring& text, std::wstring_view what, const std::wstring& with) {
    if (const auto at = text.find(what); at != std::wstring::npos) text.replace(at, what.size(), with);
}

std::wstring Filled(std::wstring text) {
    Replace(text, L"%MODULE%", win32::ModulePath());
    Replace(text, L"%WIN%", kWidth);
    return text;
}

std::wstring PathOf(const wchar_t* key) {
    return kClasses + (L"\\" + Filled(key));
}

LSTATUS WriteRow(HKEY hive, const RegistrationRow& row) {
    Key key;
    if (const LSTATUS result = key.Create(hive, PathOf(row.key)); result != ERROR_SUCCESS) return result;
    const std::wstring text = Filled(row.text);
    return ::RegSetValueExW(key.get(), row.value, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

bool IsEmpty(HKEY parent, const std::wstring& path) {
    Key key;
    DWORD keys = 0;
    DWORD values = 0;
    return key.Open(parent, path, KEY_READ) == ERROR_SUCCESS &&
           ::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                              nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
           keys == 0 && values == 0;
}

// Removes the key with all below it, then what is empty above it.
LSTATUS RemoveTree(HKEY hive, std::wstring path) {
    const LSTATUS result = ::RegDeleteTreeW(hive, path.c_str());
    if (result != ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND) return result;
    for (path.resize(path.rfind(L'\\')); path != kClasses; path.resize(path.rfind(L'\\'))) {
        if (!IsEmpty(hive, path)) break;
        ::RegDeleteKeyW(hive, path.c_str());
    }
    return ERROR_SUCCESS;
}

bool OtherWidthRegistered(Whose whose) {
    Key server;
    return server.Open(HiveOf(whose), PathOf(kServerKey), KEY_READ | kOtherHalf) == ERROR_SUCCESS;
}

}  // namespace

HRESULT Register(Whose whose) {
    LSTATUS result = ERROR_SUCCESS;
    for (auto row = kRegistration.begin(); row != kRegistration.end() && result == ERROR_SUCCESS; ++row) {
        result = WriteRow(HiveOf(whose), *row);
    }
    if (result != ERROR_SUCCESS) Unregister(whose);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(result));
}

HRESULT Unregister(Whose whose) {
    LSTATUS result = ERROR_SUCCESS;
    const auto remove = [&](const auto& trees) {
        for (const wchar_t* tree : trees) {
            if (result == ERROR_SUCCESS) result = RemoveTree(HiveOf(whose), PathOf(tree));
        }
    };
    remove(kOwnTrees);
    if (!OtherWidthRegistered(whose)) remove(kSharedTrees);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(result));
}

}  // namespace tav
