// The windows in a host's process, driven from this one by messages: as robots and screen readers do.

#include <optional>

#include "somebody.h"
#include "support/process.h"
#include "support/screen_windows.h"
#include "ui/desktop.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Drive : public Desktop {
 protected:
    ~Drive() override {
        if (process_) process_->Kill();
    }
    void StartHost() {
        process_.emplace("test_host", std::vector{std::string("start"), ToUtf8(kInn), ToUtf8(kKpp)});
        HWND window = nullptr;
        ASSERT_TRUE(
            Wait([&] { return (window = ::FindWindowW(L"TAV_OperationImport", nullptr)) != nullptr; }));
        program_.emplace(window);
        ASSERT_TRUE(WaitShown("frmmain"));
    }
    // By itself, once its last window is closed.
    void ExpectHostLeaves() {
        CloseWindow("frmmain");
        ASSERT_TRUE(Wait([&] { return program_->Ended(); }));
        const Outcome outcome = process_->Wait();
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }
    static bool WaitListed(std::size_t rows) {
        return Wait([=] { return RowsOf(Main("lstBase")).size() == rows; });
    }

 private:
    std::optional<Process> process_;
    std::optional<DrivenProgram> program_;
};

TEST_F(Drive, ImportCancelFilterClear) {
    constexpr int kRead = 1500;          // long enough for the cancel to come
    constexpr std::size_t kLoaded = 50;  // 13 of them superseded
    WriteStatements(kRead);
    folder_.Write(u"in/listfiles.xml", "of before");
    StartHost();

    ASSERT_TRUE(WaitCounts("lblInfoFile", "Подлежат загрузке: " + std::to_string(kRead)));
    Click(Main("Command1"));
    ASSERT_TRUE(WaitShown("frmShortImport"));
    Click({"frmShortImport", "CancelButton"});
    ASSERT_TRUE(WaitGone("frmShortImport"));
    EXPECT_EQ(ReadFile(folder_ / u"in/listfiles.xml"), "of before");
    EXPECT_THAT(ListFiles(folder_ / u"in", u".rtf"), SizeIs(kRead));

    for (const Text& name : ListFiles(folder_ / u"in", u".rtf")) {
        if (name >= u"v0050") DeleteFile(folder_ / Text(u"in/").append(name));
    }
    WaitFor(1100);  // a cancel counts for its second
    Click(Main("Command4"));
    ASSERT_TRUE(WaitCounts("lblInfoFile", "Файлов в папке: 50"));
    ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command1")); }));
    Click(Main("Command1"));
    ASSERT_TRUE(WaitCounts("lblInfoBase", "Выписок в базе данных: 37"));
    EXPECT_TRUE(WaitCounts("lblInfoFile", "Подлежат загрузке: 0"));
    EXPECT_TRUE(WaitListed(kLoaded));
    EXPECT_THAT(
        RowsOf(Main("lstBase"))[0],
        AllOf(StartsWith("18210101011011000110   45280000000   200901 - 200903 "), EndsWith(" Выписка")));
    EXPECT_TRUE(WaitGone("frmShortImport"));

    ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command3")); }));
    Click(Main("Command3"));
    ASSERT_TRUE(WaitActive("frmFilter"));
    const Spot codes = {"frmFilter", "cmbKBK"};
    EXPECT_THAT(RowsOf(codes), SizeIs(3));
    Focus(codes);
    Press(Key::Down);
    const std::string code = ToUtf8(samples::Taxes()[0].kbk);
    EXPECT_TRUE(Wait([&] { return TextOf(codes) == code; })) << TextOf(codes);
    Click({"frmFilter", "Command1"});
    const std::string opened = Opened("index");
    ASSERT_THAT(opened, AllOf(StartsWith(ToUtf8(folder_ / u"reports/index")), EndsWith(".doc\n")));
    EXPECT_THAT(ReadFile(FromUtf8(opened.substr(0, opened.size() - 1))),
                AllOf(HasSubstr(code), Not(HasSubstr(ToUtf8(samples::Taxes()[1].kbk)))));
    Press(Key::Escape);
    EXPECT_TRUE(WaitGone("frmFilter"));

    for (const auto& [button, left] : {std::pair{"Command3", kLoaded}, {"Command1", 0U}}) {
        ASSERT_TRUE(Wait([] { return IsEnabled(Main("Command2")); }));
        Click(Main("Command2"));
        ASSERT_TRUE(WaitShown("frmDialog"));
        EXPECT_NE(::FindWindowW(L"TAV_OperationImport", L"Внимание"), nullptr);
        EXPECT_TRUE(HeldUp("frmmain"));
        Click({"frmDialog", button});
        EXPECT_TRUE(WaitGone("frmDialog"));
        EXPECT_TRUE(
            WaitCounts("lblInfoBase", left == 0 ? "Выписок в базе данных: 0" : "Выписок в базе данных: 37"));
        EXPECT_TRUE(WaitListed(left));
    }
    ExpectHostLeaves();
}

// In the system's own window, which begins where it likes when there is no such folder.
TEST_F(Drive, AFolderIsChosen) {
    WriteSetting(u"ImportPath", folder_ / u"gone");
    StartHost();
    Click(Main("cmdImport"));
    ASSERT_TRUE(Wait([] { return BoxOnScreen().has_value(); }));
    EXPECT_TRUE(HeldUp("frmmain"));
    WaitFor(300);  // for the selection
    CloseBox();
    EXPECT_TRUE(Wait([] { return FolderExists(FromUtf8(TextOf(Main("txtImport")))); }));
    ExpectHostLeaves();
}

TEST_F(Drive, AHostWithoutWindowsLeavesAtOnce) {
    Somebody somebody;
    EXPECT_EQ(RunProgram("test_host", {"view_a", ToUtf8(kInn), ToUtf8(kKpp)}).status, 0);
    EXPECT_THAT(somebody.Leave(),
                StartsWith("Сводная справка: В базе данных для выбранного налогоплательщика"));
    EXPECT_EQ(RunProgram("test_host", {"view_x"}).status, 1);
}

}  // namespace
}  // namespace tav
