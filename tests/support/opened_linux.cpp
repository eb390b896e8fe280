#include <cstdlib>

#include "platform/files.h"
#include "support/opened.h"

namespace tav::test {

OpenedDocuments::OpenedDocuments(const TempFolder& folder)
    : record_(folder / u"opened"), path_variable_(std::getenv("PATH")) {
    folder.Write(u"xdg-open", "#!/bin/sh\necho \"$1\" >> \"$(dirname \"$0\")/opened\"\n");
    std::filesystem::permissions(NativePath(folder / u"xdg-open"), std::filesystem::perms::owner_all);
    ::setenv("PATH", (ToUtf8(folder.path()) + ":" + path_variable_).c_str(), 1);
}
OpenedDocuments::~OpenedDocuments() {
    ::setenv("PATH", path_variable_.c_str(), 1);
}

std::string OpenedDocuments::Paths() const {
    return FileExists(record_) ? ReadFile(record_) : std::string();
}

}  // namespace tav::test
