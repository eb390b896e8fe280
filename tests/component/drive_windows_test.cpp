// The windows in a host's process, driven from this one by messages: as robots and screen readers do.

#include "db/holdings.h"
#include "somebody.h"
#include "support/process.h"
#include "support/screen_windows.h"
#include "ui/session.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Drive : public Session {
 protected:
    Drive() { many_ = 4000; }  // long enough for the cancel to come
    ~Drive() override {
        if (process_) process_->Kill();
    }
    void Begin() override {
        process_.emplace("test_host", std::vector{kind_, std::string("start"), ToUtf8(kInn), ToUtf8(kKpp)});
        HWND window = nullptr;
        ASSERT_TRUE(
            Wait([&] { return (window = ::FindWindowW(L"TAV_OperationImport", nullptr)) != nullptr; }));
        program_.emplace(window);
        ASSERT_TRUE(WaitShown("frmmain"));
    }
    // By itself, once its last window is closed.
    void ExpectHostLeaves() {
        ASSERT_TRUE(Wait([&] { return program_->Ended(); }));
        const Outcome outcome = process_->Wait();
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }

    std::string kind_ = "unmasked";  // of the host's floating point

 private:
    std::optional<Process> process_;
    std::optional<DrivenProgram> program_;
};

TEST_F(Drive, ImportCancelFilterClear) {
    Play("session");
    ExpectHostLeaves();
}

// In the system's own window, which begins where it likes when there is no such folder.
TEST_F(Drive, AFolderIsChosen) {
    WriteSetting(u"ImportPath", folder_ / u"gone");
    kind_ = "single";
    Begin();
    Click(Main("cmdImport"));
    ASSERT_TRUE(Wait([] { return BoxOnScreen().has_value(); }));
    EXPECT_TRUE(HeldUp("frmmain"));
    WaitFor(300);  // for the selection
    CloseBox();
    EXPECT_TRUE(Wait([] { return FolderExists(FromUtf8(TextOf(Main("txtImport")))); }));
    CloseWindow("frmmain");
    ExpectHostLeaves();
}

TEST_F(Drive, NothingGrowsInAHostThatLoadsOpensAndClosesAgainAndAgain) {
    const Outcome outcome = RunProgram("test_host", {"cycles", ToUtf8(kInn), ToUtf8(kKpp)});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Drive, AHostWithoutWindowsLeavesAtOnce) {
    Somebody somebody;
    EXPECT_EQ(RunProgram("test_host", {"view_a", ToUtf8(kInn), ToUtf8(kKpp)}).status, 0);
    for (const char* kind : {"unmasked", "single"}) {
        WriteStatements(3);
        const Outcome outcome = RunProgram("test_host", {kind, "import", ToUtf8(kInn), ToUtf8(kKpp)});
        EXPECT_EQ(outcome.status, 0) << kind << outcome.err;
        DeleteFile(folder_ / u"in/listfiles.xml");  // throws when it is missing
    }
    EXPECT_THAT(somebody.Leave(),
                AllOf(StartsWith("Сводная справка: В базе данных для выбранного налогоплательщика"),
                      Not(HasSubstr("Ошибка"))));
    EXPECT_EQ(RunProgram("test_host", {"view_x"}).status, 1);
}

// By its own handler of exceptions. The second call finds nothing of the first.
TEST_F(Drive, AHostThatLeavesAnOperationCallsItAgain) {
    WriteStatements(300);
    {
        Somebody somebody;
        const Outcome outcome =
            RunProgram("test_host", {"unmasked", "raising", "import", ToUtf8(kInn), ToUtf8(kKpp)});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(somebody.Leave(), "");
    }
    EXPECT_EQ(HeldDocuments(folder_ / u"PlX_Base.mdb", {}, {}).size(), 300U);

    WriteSetting(u"DataBasePath", folder_ / u"gone");
    Somebody somebody;
    const Outcome outcome =
        RunProgram("test_host", {"single", "catching", "view_v", ToUtf8(kInn), ToUtf8(kKpp)});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(somebody.Leave(),
                AllOf(StartsWith("Ошибка в функции GetFiles: "), Not(HasSubstr("\nОшибка"))));
}

}  // namespace
}  // namespace tav
