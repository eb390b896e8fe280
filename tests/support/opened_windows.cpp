// The recorder is the command processor, named to the shell for the types of our documents while the test
// runs; it writes UTF-16. For the whole machine: Wine does not look at the user's types.
#include <array>

#include "platform/files.h"
#include "platform/win32_windows.h"
#include "support/opened.h"

namespace tav::test {
namespace {

constexpr std::array kTypes = {L"Software\\Classes\\.rtf", L"Software\\Classes\\.doc"};
constexpr wchar_t kRecorder[] = L"Software\\Classes\\TAV.Test.Recorder";

std::array<std::wstring, kTypes.size()> before;

std::wstring Default(const wchar_t* key) {
    wchar_t value[256] = L"";
    DWORD size = sizeof value;
    ::RegGetValueW(HKEY_LOCAL_MACHINE, key, nullptr, RRF_RT_REG_SZ, nullptr, value, &size);
    return value;
}
void SetDefault(const std::wstring& key, const std::wstring& value) {
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, value.c_str(),
                      static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

OpenedDocuments::OpenedDocuments(const TempFolder& folder) : record_(folder / u"opened") {
    SetDefault(std::wstring(kRecorder) + L"\\shell\\open\\command",
               L"cmd.exe /u /c echo %1>>" + win32::Wide(record_));
    for (std::size_t i = 0; i < kTypes.size(); ++i) {
        before[i] = Default(kTypes[i]);
        SetDefault(kTypes[i], L"TAV.Test.Recorder");
    }
}
OpenedDocuments::~OpenedDocuments() {
    for (std::size_t i = 0; i < kTypes.size(); ++i) SetDefault(kTypes[i], before[i]);
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kRecorder);
}

std::string OpenedDocuments::Paths() const {
    if (!FileExists(record_)) return {};
    const std::string bytes = ReadFile(record_);
    Text text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
        text += static_cast<char16_t>(byte(i) | byte(i + 1) << 8);
    }
    return ToUtf8(ReplaceAll(ReplaceAll(text, u"\"", u""), u"\r\n", u"\n"));
}

}  // namespace tav::test
