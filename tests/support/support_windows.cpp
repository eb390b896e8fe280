#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/win32_windows.h"
#include "support/support.h"

namespace tav::test {

std::filesystem::path NativePath(TextView path) {
    return Text(path);
}

bool MakeLink(TextView target, TextView link) {
    const DWORD folder = FolderExists(target) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    // Wine says that it has made one.
    return ::CreateSymbolicLinkW(win32::Wide(link).c_str(), win32::Wide(target).c_str(), folder) != 0 &&
           (FileExists(link) || FolderExists(link));
}

std::vector<Text> OddNames() {
    return {u"a & b.rtf", u"{1} %TEMP%.rtf", u"с пробелом №1.RTF", u"...rtf", u"it's.rtf", u"\u4E2D.rtf"};
}

OwnSettings::OwnSettings()
    : store_(u"Software\\" + NameOf(folder_.path().substr(0, folder_.path().size() - 1))) {
    ::SetEnvironmentVariableW(L"TAV_SETTINGS", win32::Wide(store_).c_str());
}
OwnSettings::~OwnSettings() {
    ::SetEnvironmentVariableW(L"TAV_SETTINGS", nullptr);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, win32::Wide(store_).c_str());
}

}  // namespace tav::test
