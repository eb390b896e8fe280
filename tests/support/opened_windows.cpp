// The recorder is the command processor, named to the shell for the types of our documents; it writes UTF-16.
#include "platform/files.h"
#include "platform/win32_windows.h"
#include "support/opened.h"

namespace tav::test {
namespace {

constexpr const wchar_t* kTypes[] = {L"Software\\Classes\\.rtf", L"Software\\Classes\\.doc"};
constexpr wchar_t kRecorder[] = L"Software\\Classes\\TAV.Test.Recorder";

void SetDefault(const std::wstring& key, const std::wstring& value) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), nullptr, REG_SZ, value.c_str(),
                      static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

OpenedDocuments::OpenedDocuments(const TempFolder& folder) : record_(folder / u"opened") {
    SetDefault(std::wstring(kRecorder) + L"\\shell\\open\\command",
               L"cmd.exe /u /c echo %1>>" + win32::Wide(record_));
    for (const wchar_t* type : kTypes) SetDefault(type, L"TAV.Test.Recorder");
}
OpenedDocuments::~OpenedDocuments() {
    for (const wchar_t* type : kTypes) ::RegDeleteTreeW(HKEY_CURRENT_USER, type);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kRecorder);
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
