#include <gtest/gtest.h>

#include <cstdlib>

#include "support/support.h"

namespace tav::test {

std::filesystem::path NativePath(TextView path) {
    return ToUtf8(path);
}

bool MakeLink(TextView target, TextView link) {
    std::filesystem::create_symlink(NativePath(target), NativePath(link));
    return true;
}

std::vector<Text> OddNames() {
    return {u"a & b < c.rtf", u"\"quoted\".rtf", u"с пробелом №1.RTF",
            u"...rtf",        u"it's.rtf",       FromUtf8("\xFF\xFE.rtf")};
}

OwnSettings::OwnSettings() : store_(folder_ / u"settings") {
    ::setenv("TAV_SETTINGS", ToUtf8(store_).c_str(), 1);
}
OwnSettings::~OwnSettings() {
    ::unsetenv("TAV_SETTINGS");
}

}  // namespace tav::test
