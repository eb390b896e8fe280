#include <gtest/gtest.h>

#include "forms/shell.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/win32_windows.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

TEST(WindowsEnvironment, FoldersOfTheProcess) {
    EXPECT_TRUE(FileExists(ComponentFolder() + u"test_platform.exe"));
    const Text before = TempVariable();
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(ReportFolder(), before);
    ::SetEnvironmentVariableW(L"TEMP", nullptr);
    EXPECT_EQ(TempVariable(), u"");
    EXPECT_TRUE(FolderExists(ReportFolder()));
    ::SetEnvironmentVariableW(L"TEMP", win32::Wide(before).c_str());
}

TEST(WindowsEnvironment, CtrlCIsRemembered) {
    ::FreeConsole();
    if (!::AllocConsole()) GTEST_SKIP() << "no console";
    {
        const InterruptWatch watch;
        EXPECT_FALSE(InterruptWatch::Interrupted());
        ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
        for (int i = 0; i < 5000 && !InterruptWatch::Interrupted(); ++i) ::Sleep(1);
        EXPECT_TRUE(InterruptWatch::Interrupted());
    }
    const InterruptWatch next;
    EXPECT_FALSE(InterruptWatch::Interrupted());
    ::FreeConsole();
}

TEST(WindowsShell, SaysWhatItCannotOpen) {
    const test::TempFolder folder;
    EXPECT_EQ(test::ErrorOf([&] { OpenDocument(folder / u"none.doc"); }), RunTimeError::FileNotFound);
    EXPECT_EQ(test::ErrorOf([&] { OpenDocument(folder.Write(u"x.no-such-kind", "")); }),
              RunTimeError::PathFileAccess);
}

}  // namespace
}  // namespace tav
