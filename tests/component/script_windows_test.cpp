// A script of the script host of Windows uses the registered class.

#include <gmock/gmock.h>

#include <filesystem>

#include "common/windows1251.h"
#include "component.h"
#include "db/empty_database.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "settings/settings.h"
#include "somebody.h"
#include "support/opened.h"
#include "support/process.h"
#include "support/support.h"

namespace tav {
namespace {

using testing::HasSubstr;

TEST(Script, CallsEveryOperationAndGetsTheErrorsOfWrongCalls) {
    const test::OwnSettings settings;
    const test::TempFolder folder;
    samples::SampleFolder(folder / u"in");
    ASSERT_TRUE(WriteSetting(u"ImportPath", folder / u"in"));
    ASSERT_TRUE(WriteSetting(u"ExportPath", folder / u"reports"));
    // The database and the schema lie beside the library, wherever that is.
    const Text home = folder / u"Выписки и акты/";
    MakeFolders(home);
    CreateDatabase(home + u"PlX_Base.mdb");
    for (const TextView file : {u"TAV_OperationImport.dll", u"IU_AKTSVP_1_862_01_05_01_01.xsd"}) {
        WriteFileWhole(home + Text(file), ReadFile(ComponentFolder() + Text(file)));
    }
    const test::OpenedDocuments opened(folder);
    const std::string library = ToUtf8(home) + "TAV_OperationImport.dll";
    ASSERT_EQ(test::RunProgram("regsvr32", {"/s", library}).status, 0);

    const Text script =
        folder.Write(u"host.vbs", test::Bytes(FromUtf8(test::TestFile("component/data/host.vbs"))));
    const samples::Taxpayer& taxpayer = samples::SampleTaxpayer();
    test::Somebody somebody;
    const auto outcome =
        test::RunProgram("cscript", {"//nologo", ToUtf8(script), ToUtf8(folder / u"notes.txt"),
                                     ToUtf8(taxpayer.inn), ToUtf8(taxpayer.kpp)});
    EXPECT_EQ(test::RunProgram("regsvr32", {"/s", "/u", library}).status, 0);

    EXPECT_EQ(outcome.status, 7) << outcome.out << outcome.err;
    test::ExpectGolden("component/host_notes.txt", ToUtf8(FromWindows1251(ReadFile(folder / u"notes.txt"))));
    test::ExpectGolden("component/host_boxes.txt", somebody.Leave());
    EXPECT_TRUE(FileExists(folder / u"in/listfiles.xml"));
    EXPECT_TRUE(FileExists(folder / u"reports/index.doc"));
    EXPECT_TRUE(FileExists(folder / u"reports/acts.doc"));
    // By a process that nobody waits for.
    for (int i = 0; i < 100 && opened.Paths().empty(); ++i) ::Sleep(50);
    EXPECT_THAT(opened.Paths(), HasSubstr("vipis.doc"));
}

// There is no provider here: the rest of it is for machines that have one.
TEST(Script, TheSelfTestTriesTheClassWithItsOwnEngineAndLeavesItsVerdict) {
    const test::TempFolder folder;
    samples::SampleFolder(folder / u"samples");
    const Text script = folder.Write(u"selftest.vbs", test::TestFile("../windows/selftest.vbs"));
    const test::OpenedDocuments opened(folder);
    const std::string library = ToUtf8(win32::FromWide(test::ComponentPath()));
    const Text temp = TempVariable();
    const auto before = std::ranges::distance(std::filesystem::directory_iterator(test::NativePath(temp)));
    ASSERT_EQ(test::RunProgram("regsvr32", {"/s", library}).status, 0);
    test::Somebody somebody;
    // The script would set it itself, but Wine's script host cannot.
    ::SetEnvironmentVariableW(L"TAV_SETTINGS", L"Software\\TAV_OperationImport.SelfTest");
    const auto outcome =
        test::RunProgram("cscript", {"//nologo", ToUtf8(script), ToUtf8(ComponentFolder() + u"tav.exe")});
    ::SetEnvironmentVariableW(L"TAV_SETTINGS", nullptr);
    somebody.Leave();
    EXPECT_EQ(test::RunProgram("regsvr32", {"/s", "/u", library}).status, 0);
    EXPECT_EQ(outcome.status, 2) << outcome.err;
    EXPECT_THAT(outcome.out,
                testing::AllOf(HasSubstr("ok      the class: start"),
                               HasSubstr("All is well, but nothing was tried with a provider.")));
    EXPECT_TRUE(FileExists(folder / u"selftest.txt"));
    EXPECT_EQ(std::ranges::distance(std::filesystem::directory_iterator(test::NativePath(temp))), before);
}

}  // namespace
}  // namespace tav
