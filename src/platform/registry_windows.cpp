#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "common/concat.h"
#include "platform/registry.h"
#include "platform/win32_windows.h"

namespace tav {
namespace {

// Work beside the windows reads settings, too.
thread_local LSTATUS last_result = ERROR_SUCCESS;
std::mutex failure_guard;
Text last_failure;

// Where a key is looked for, in this order; a value is written at the first place. The host is a 32-bit
// program, and the machine's hive has a half of its own for those.
struct Place {
    HKEY hive;
    REGSAM view;
    Text prefix;
};

std::vector<Place> PlacesOf(Hive hive) {
    const TextView name = hive == Hive::CurrentUser ? u"HKEY_CURRENT_USER\\" : u"HKEY_LOCAL_MACHINE\\";
    const Text store = win32::Variable(L"TAV_SETTINGS");
    if (!store.empty()) return {{HKEY_CURRENT_USER, 0, (store + u"\\").append(name)}};
    if (hive == Hive::CurrentUser) return {{HKEY_CURRENT_USER, 0, {}}};
    return {{HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY, {}}, {HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, {}}};
}

std::wstring KeyPath(const Place& place, TextView key) {
    while (key.ends_with(u'\\')) key.remove_suffix(1);
    return win32::Wide(place.prefix + Text(key));
}

struct CloseKey {
    void operator()(HKEY key) const { ::RegCloseKey(key); }
};
using Key = std::unique_ptr<HKEY__, CloseKey>;

// Keeps what the system said; true for success.
bool Noted(LSTATUS result, TextView key, TextView name) {
    last_result = result;
    if (result != ERROR_SUCCESS) {
        const std::lock_guard lock(failure_guard);
        last_failure = Concat(key, u" ", name, u": ", win32::ErrorWords(static_cast<DWORD>(result)));
    }
    return result == ERROR_SUCCESS;
}

// The text up to its closing zero, which not every program writes.
Text TextOf(std::string_view bytes) {
    Text text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto low = static_cast<unsigned char>(bytes[at]);
        const auto high = static_cast<unsigned char>(bytes[at + 1]);
        if (low == 0 && high == 0) break;
        text += static_cast<char16_t>(low | high << 8);
    }
    return text;
}

std::optional<RegistryValue> ValueOf(DWORD type, const std::string& bytes) {
    switch (static_cast<RegistryType>(type)) {
        case RegistryType::String:
        case RegistryType::ExpandString:
            return TextOf(bytes);
        case RegistryType::DoubleWord: {
            std::uint32_t number = 0;
            if (bytes.size() != sizeof number) return std::nullopt;
            bytes.copy(reinterpret_cast<char*>(&number), sizeof number);
            return number;
        }
        case RegistryType::Binary:
        case RegistryType::MultiString:
            return Binary{bytes};
    }
    return std::nullopt;
}

LSTATUS Query(const Place& place, TextView path, TextView name, RegistryValue& slot) {
    HKEY opened = nullptr;
    LSTATUS result =
        ::RegOpenKeyExW(place.hive, KeyPath(place, path).c_str(), 0, KEY_QUERY_VALUE | place.view, &opened);
    if (result != ERROR_SUCCESS) return result;
    const Key key(opened);
    const std::wstring wide_name = win32::Wide(name);
    std::string bytes(256, '\0');
    DWORD type = 0;
    do {
        auto size = static_cast<DWORD>(bytes.size());
        result = ::RegQueryValueExW(opened, wide_name.c_str(), nullptr, &type,
                                    reinterpret_cast<BYTE*>(bytes.data()), &size);
        bytes.resize(size);
    } while (result == ERROR_MORE_DATA);
    if (result != ERROR_SUCCESS) return result;
    const auto value = ValueOf(type, bytes);
    if (!value) return ERROR_UNSUPPORTED_TYPE;
    slot = *value;
    return ERROR_SUCCESS;
}

std::string BytesOf(const RegistryValue& value) {
    if (const Text* text = std::get_if<Text>(&value)) {
        return {reinterpret_cast<const char*>(text->c_str()), (text->size() + 1) * sizeof(char16_t)};
    }
    if (const auto* number = std::get_if<std::uint32_t>(&value)) {
        return {reinterpret_cast<const char*>(number), sizeof *number};
    }
    const Binary* binary = std::get_if<Binary>(&value);
    return binary == nullptr ? std::string() : binary->bytes;
}

}  // namespace

bool ReadRegistry(Hive hive, TextView key, TextView name, RegistryValue& slot) {
    slot = Null();
    static_assert(kRegistryAbsent == ERROR_FILE_NOT_FOUND);
    for (const Place& place : PlacesOf(hive)) {
        if (Noted(Query(place, key, name, slot), key, name)) return true;
        if (last_result != kRegistryAbsent) return false;  // it exists and cannot be read
    }
    return false;
}

bool WriteRegistry(Hive hive, TextView key, TextView name, const RegistryValue& value, RegistryType type) {
    const Place place = PlacesOf(hive).front();
    HKEY opened = nullptr;
    const LSTATUS result =
        ::RegCreateKeyExW(place.hive, KeyPath(place, key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                          KEY_SET_VALUE | place.view, nullptr, &opened, nullptr);
    if (!Noted(result, key, name)) return false;
    const Key owner(opened);
    const std::string bytes = BytesOf(value);
    return Noted(
        ::RegSetValueExW(opened, win32::Wide(name).c_str(), 0, static_cast<DWORD>(type),
                         reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size())),
        key, name);
}

bool RemoveFromRegistry(Hive hive, TextView key, TextView name) {
    for (const Place& place : PlacesOf(hive)) {
        HKEY opened = nullptr;
        LSTATUS result =
            ::RegOpenKeyExW(place.hive, KeyPath(place, key).c_str(), 0, KEY_SET_VALUE | place.view, &opened);
        if (result == ERROR_SUCCESS) {
            const Key owner(opened);
            result = ::RegDeleteValueW(opened, win32::Wide(name).c_str());
        }
        if (!Noted(result == kRegistryAbsent ? ERROR_SUCCESS : result, key, name)) return false;
    }
    return true;
}

int LastRegistryResult() {
    return last_result;
}

Text LastRegistryFailure() {
    const std::lock_guard lock(failure_guard);
    return last_failure;
}

}  // namespace tav
