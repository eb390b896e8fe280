#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <vector>

#include "common/concat.h"
#include "common/get_next.h"
#include "platform/files.h"
#include "platform/posix_linux.h"
#include "platform/registry.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

// Work beside the windows reads settings, too.
thread_local int last_result = 0;
std::mutex failure_guard;
Text last_failure;

constexpr std::array<std::pair<RegistryType, TextView>, 5> kTypeNames = {{
    {RegistryType::String, u"string"},
    {RegistryType::ExpandString, u"expand"},
    {RegistryType::DoubleWord, u"dword"},
    {RegistryType::Binary, u"binary"},
    {RegistryType::MultiString, u"multi"},
}};

// Characters that a quoted text escapes with a backslash, and the letters that represent them.
constexpr std::array<std::pair<char16_t, char16_t>, 4> kEscapes = {
    {{u'"', u'"'}, {u'\\', u'\\'}, {u'\n', u'n'}, {u'\r', u'r'}}};

Text Quoted(TextView text) {
    Text out = u"\"";
    for (const char16_t c : text) {
        const auto* escape =
            std::find_if(kEscapes.begin(), kEscapes.end(), [&](const auto& e) { return e.first == c; });
        if (escape != kEscapes.end()) out += u'\\';
        out += escape != kEscapes.end() ? escape->second : c;
    }
    return out += u'"';
}

std::optional<Text> Unquoted(TextView text) {
    if (text.size() < 2 || text.front() != u'"' || text.back() != u'"') return std::nullopt;
    text = text.substr(1, text.size() - 2);
    Text out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t c = text[i];
        if (c == u'\\' && i + 1 < text.size()) {
            const auto* escape = std::find_if(kEscapes.begin(), kEscapes.end(),
                                              [&](const auto& e) { return e.second == text[i + 1]; });
            // A backslash that a person wrote before any other character is meant literally.
            if (escape != kEscapes.end()) {
                c = escape->first;
                ++i;
            }
        }
        out += c;
    }
    return out;
}

constexpr TextView kHexDigits = u"0123456789abcdef";

Text Hex(std::string_view bytes) {
    Text out;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += kHexDigits[byte >> 4];
        out += kHexDigits[byte & 15U];
    }
    return out;
}

std::optional<std::string> Unhex(TextView digits) {
    std::string out;
    if (digits.size() % 2 != 0) return std::nullopt;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::size_t high = kHexDigits.find(LowerChar(digits[i]));
        const std::size_t low = kHexDigits.find(LowerChar(digits[i + 1]));
        if (high == TextView::npos || low == TextView::npos) return std::nullopt;
        out += static_cast<char>(high << 4 | low);
    }
    return out;
}

std::optional<std::uint32_t> Number(TextView digits) {
    std::uint64_t number = 0;
    for (const char16_t c : digits) {
        if (c < u'0' || c > u'9' || number > UINT32_MAX / 10) return std::nullopt;
        number = number * 10 + static_cast<unsigned>(c - u'0');
    }
    if (digits.empty() || number > UINT32_MAX) return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

Text FormatValue(const RegistryValue& value, RegistryType type) {
    Text out;
    for (const auto& [known, name] : kTypeNames) {
        if (known == type) out = name;
    }
    out += u' ';
    if (const Text* text = std::get_if<Text>(&value)) return out + Quoted(*text);
    if (const auto* number = std::get_if<std::uint32_t>(&value)) return out + Digits(*number);
    if (const Binary* binary = std::get_if<Binary>(&value)) return out + Hex(binary->bytes);
    return out;
}

// Nothing for a line that is none of ours.
std::optional<RegistryValue> ParseValue(TextView line) {
    const TextView type = GetNext(line, u" ");
    for (const auto& [known, name] : kTypeNames) {
        if (!EqualNoCase(type, name)) continue;
        if (known == RegistryType::String || known == RegistryType::ExpandString) {
            if (auto text = Unquoted(Trim(line))) return *text;
        } else if (known == RegistryType::DoubleWord) {
            if (const auto number = Number(Trim(line))) return *number;
        } else if (auto bytes = Unhex(Trim(line))) {
            return Binary{std::move(*bytes)};
        }
    }
    return std::nullopt;
}

Text SectionLine(Hive hive, TextView key) {
    while (key.ends_with(u'\\')) key.remove_suffix(1);
    return Concat(hive == Hive::CurrentUser ? u"[HKEY_CURRENT_USER\\" : u"[HKEY_LOCAL_MACHINE\\", key, u"]");
}

Text StorePath() {
    if (const char* file = std::getenv("TAV_SETTINGS"); file != nullptr && *file != '\0')
        return FromUtf8(file);
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    if (config != nullptr && *config != '\0') return WithSeparator(FromUtf8(config)) + u"tav/settings";
    return WithSeparator(FromUtf8(home == nullptr ? "" : home)) + u".config/tav/settings";
}

// What some editors begin a file with.
constexpr char16_t kByteOrderMark = 0xFEFF;

// The store as lines, so that a rewrite keeps what a person wrote between them.
class Store {
 public:
    Store() : path_(StorePath()) {
        const Text content = Content();
        TextView rest = content;
        if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(1);
        while (!rest.empty()) {
            TextView line = GetNext(rest, u"\n");
            while (line.ends_with(u'\r')) line.remove_suffix(1);
            lines_.emplace_back(line);
        }
    }

    RegistryValue Find(Hive hive, TextView key, TextView name) const {
        const Place place = Locate(SectionLine(hive, key), name);
        if (!place.found) return Null();
        const TextView line = lines_[place.line];
        if (auto value = ParseValue(Trim(line.substr(line.find(u'=') + 1)))) return *value;
        throw Failure(RunTimeError::TypeMismatch, Concat(name, u" (", path_, u")"));
    }

    void Put(Hive hive, TextView key, TextView name, TextView value) {
        const Text section = SectionLine(hive, key);
        const Place place = Locate(section, name);
        const Text line = Concat(name, u" = ", value);
        if (place.found) {
            lines_[place.line] = line;
            return;
        }
        if (!place.section) lines_.push_back(section);
        const std::size_t at = place.section ? place.line : lines_.size();
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), line);
    }

    void Remove(Hive hive, TextView key, TextView name) {
        const Place place = Locate(SectionLine(hive, key), name);
        if (place.found) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(place.line));
    }

    void Save() const {
        Text content;
        for (const Text& line : lines_) content += line + u'\n';
        RemoveLeftovers(FolderOf(path_));
        WriteFileWhole(path_, ToUtf8(content));
    }

 private:
    struct Place {
        bool section = false;
        bool found = false;
        std::size_t line = 0;  // of the value, or where a new one of the section goes
    };

    // A file that is there but cannot be read is not taken for an empty one, which would be written over it.
    Text Content() const {
        try {
            return FromUtf8(ReadFile(path_));
        } catch (const Failure& failure) {
            if (failure.error() != RunTimeError::FileNotFound &&
                failure.error() != RunTimeError::PathNotFound)
                throw;
            return {};
        }
    }

    Place Locate(TextView section, TextView name) const {
        Place place;
        bool inside = false;
        for (std::size_t i = 0; i < lines_.size() && !place.found; ++i) {
            const TextView line = Trim(lines_[i]);
            if (line.starts_with(u'[')) {
                inside = EqualNoCase(line, section);
                place.section = place.section || inside;
            }
            if (!inside) continue;
            const std::size_t equals = line.find(u'=');
            place.found = equals != TextView::npos && EqualNoCase(Trim(line.substr(0, equals)), name);
            place.line = place.found ? i : i + 1;
        }
        return place;
    }

    Text path_;
    std::vector<Text> lines_;
};

// Whole read-change-write turns of several processes follow one another.
posix::Descriptor LockStoreFolder() {
    const Text folder = FolderOf(StorePath());
    posix::Descriptor descriptor(
        ::open(folder.empty() ? "." : ToUtf8(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) ::flock(descriptor.number(), LOCK_EX);
    return descriptor;
}

// Runs the store operation; a failure becomes the operating system's result code.
template <class Operation>
bool Succeeds(Operation operation) {
    try {
        operation();
        last_result = 0;
    } catch (const Failure& failure) {
        last_result = failure.error() == RunTimeError::PermissionDenied ? EACCES : EIO;
        const std::lock_guard lock(failure_guard);
        last_failure = failure.description();
    }
    return last_result == 0;
}

template <class Change>
bool ChangesStore(Change change) {
    return Succeeds([&] {
        MakeFolders(StorePath());
        const posix::Descriptor lock = LockStoreFolder();
        Store store;
        change(store);
        store.Save();
    });
}

}  // namespace

bool ReadRegistry(Hive hive, TextView key, TextView name, RegistryValue& slot) {
    slot = Null();
    const bool readable = Succeeds([&] { slot = Store().Find(hive, key, name); });
    if (readable && std::holds_alternative<Null>(slot)) last_result = kRegistryAbsent;
    return last_result == 0;
}

bool WriteRegistry(Hive hive, TextView key, TextView name, const RegistryValue& value, RegistryType type) {
    return ChangesStore([&](Store& store) { store.Put(hive, key, name, FormatValue(value, type)); });
}

bool RemoveFromRegistry(Hive hive, TextView key, TextView name) {
    return ChangesStore([&](Store& store) { store.Remove(hive, key, name); });
}

int LastRegistryResult() {
    return last_result;
}

Text LastRegistryFailure() {
    const std::lock_guard lock(failure_guard);
    return last_failure;
}

}  // namespace tav
