#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/registry.h"
#include "support/support.h"

namespace tav {
namespace {

using test::OwnSettings;

TEST(LinuxRegistry, ARewriteKeepsWhatAPersonWrote) {
    const OwnSettings own;
    const Text& path = own.store();
    WriteFileWhole(path,
                   "\xEF\xBB\xBF# mine\n[HKEY_CURRENT_USER\\A]\nx = string \"1\"\nbroken line\ny = dword "
                   "many\n\n[HKEY_CURRENT_USER\\B]\n");
    RegistryValue slot;
    EXPECT_FALSE(ReadRegistry(Hive::CurrentUser, u"A", u"y", slot));
    EXPECT_TRUE(WriteRegistry(Hive::CurrentUser, u"A", u"x", Text(u"2"), RegistryType::String));
    EXPECT_EQ(ReadFile(path),
              "# mine\n[HKEY_CURRENT_USER\\A]\nx = string \"2\"\nbroken line\ny = dword "
              "many\n\n[HKEY_CURRENT_USER\\B]\n");
}

}  // namespace
}  // namespace tav
