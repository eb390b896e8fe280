#include "common/aside.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cfenv>
#include <functional>
#include <thread>
#include <utility>

#include "common/failure.h"
#include "common/progress.h"
#include "support/support.h"

namespace tav {
namespace {

// The windows' thread, as far as work can see it.
class Windows : public Progress {
 public:
    bool HasWindows() const override { return true; }
    void Show(int files) override { Note("show " + std::to_string(files)); }
    void SetLabel(TextView file) override { label = file; }
    void Close() override { Note("close after " + ToUtf8(label)); }
    void ProcessEvents() override {
        Note({});
        if (AsideRuns() && handler) std::exchange(handler, nullptr)();
    }
    void Note(const std::string& what) {
        if (std::this_thread::get_id() != here) said += " elsewhere:";
        said += what.empty() ? what : " " + what;
    }

    const std::thread::id here = std::this_thread::get_id();
    Text label;
    std::string said;
    std::function<void()> handler;
    const ScopedProgress scope{*this};
};

TEST(Aside, WindowsLiveOnAndShowWhatTheWorkSays) {
    test::MessageList messages;
    Windows windows;
    std::atomic<bool> handled = false;
    const auto wait = [&] {
        while (!handled) std::this_thread::yield();
    };
    windows.handler = [&] {
        handled = true;
        RunAside([&] { windows.said += " second"; });
    };
    EXPECT_THROW(RunAside([&] {
                     EXPECT_NE(std::this_thread::get_id(), windows.here);
                     CurrentProgress().Show(3);
                     CurrentProgress().SetLabel(u"1.rtf");
                     RunAside([] { ShowMessage(u"Запрет", u"занят"); });
                     CurrentProgress().Close();
                     wait();
                     throw Failure(RunTimeError::Overflow);
                 }),
                 Failure);
    EXPECT_EQ(windows.said, " show 3 close after 1.rtf second");
    EXPECT_THAT(messages.messages, testing::ElementsAre(Message{u"Запрет", u"занят"}));
    EXPECT_FALSE(AsideRuns());

    handled = false;
    bool ended = false;
    windows.handler = [&] {
        handled = true;
        throw Failure(RunTimeError::TypeMismatch);
    };
    EXPECT_THROW(RunAside([&] {
                     wait();
                     ended = true;
                 }),
                 Failure);
    EXPECT_TRUE(ended);
    windows.said.clear();
    std::fesetround(FE_UPWARD);
    RunAside([] { EXPECT_EQ(std::fegetround(), FE_UPWARD); });
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(windows.said, "");  // what is done at once lets no event through
}

}  // namespace
}  // namespace tav
