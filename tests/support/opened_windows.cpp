// The recorder is the command processor, named to the shell for the types of our documents while the test
// runs; it writes UTF-16. For the whole machine: Wine does not look at the user's types.
#include <optional>

#include "platform/files.h"
#include "support/machine_value_windows.h"
#include "support/opened.h"

namespace tav::test {
namespace {

constexpr wchar_t kRecorder[] = L"TAV.Test.Recorder";
constexpr wchar_t kRecorderKey[] = L"Software\\Classes\\TAV.Test.Recorder";

std::optional<MachineValue> rtf, doc;

}  // namespace

OpenedDocuments::OpenedDocuments(const TempFolder& folder) : record_(folder / u"opened") {
    const std::wstring command = L"cmd.exe /u /c echo %1>>" + win32::Wide(record_);
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, (std::wstring(kRecorderKey) + L"\\shell\\open\\command").c_str(),
                      nullptr, REG_SZ, command.c_str(),
                      static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
    rtf.emplace(L"Software\\Classes\\.rtf", kRecorder);
    doc.emplace(L"Software\\Classes\\.doc", kRecorder);
}
OpenedDocuments::~OpenedDocuments() {
    rtf.reset();
    doc.reset();
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kRecorderKey);
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
