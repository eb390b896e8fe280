// How the windows get on with the process: its screen, its application, its locale, its end.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>
#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/failure.h"
#include "forms/forms.h"

namespace tav {
namespace {

const std::vector<ControlPlan> kControls = {{.name = u"Ok", .kind = ControlKind::Button, .caption = u"OK"}};
const FormPlan kPlan = {.name = u"Probe", .caption = u"Проба", .controls = kControls};

class Silent : public FormEvents {
 public:
    void OnEvent(std::size_t, Event) override {}
    void OnCloseRequest() override {}
};

// Each in a process of its own, which has no application yet; it ends with 0 when all went as it should.
class FormsQtProcess : public ::testing::Test {
 protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

int RefusedFor(const std::vector<std::pair<const char*, const char*>>& environment, TextView reason) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) ::unsetenv(name);
    for (const auto& [name, value] : environment) ::setenv(name, value, 1);
    try {
        CurrentToolkit();
    } catch (const Failure& failure) {
        return failure.description().find(reason) == Text::npos || ToolkitLoaded() ? 2 : 0;
    }
    return 1;
}

TEST_F(FormsQtProcess, WithoutAScreenThereIsAFailureAndLaterAScreen) {
    EXPECT_EXIT(
        {
            int wrong = RefusedFor({}, u"нет экрана");
            wrong += RefusedFor({{"DISPLAY", ":5977"}}, u"экран не отвечает (xcb)");
            wrong += RefusedFor({{"WAYLAND_DISPLAY", "/nowhere"}, {"DISPLAY", ":5977"}},
                                u"(wayland), экран не отвечает (xcb)");
            wrong += RefusedFor({{"QT_QPA_PLATFORM", "nonsense;eglfs"}}, u"(nonsense), нет такого модуля");
            ::setenv("QT_QPA_PLATFORM", "nonsense;offscreen", 1);
            CurrentToolkit();
            std::exit(wrong + (ToolkitLoaded() ? 0 : 4));
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FormsQtProcess, AHostsApplicationIsUsedAndItsLoopGoesOn) {
    EXPECT_EXIT(
        {
            int count = 0;
            QApplication host(count, nullptr);
            Silent events;
            auto window = CurrentToolkit().Create(kPlan, events);
            window->Show();
            bool alive = false;
            QTimer soon;
            soon.callOnTimeout([&] { window.reset(); });
            soon.start(0);
            QTimer later;
            later.callOnTimeout([&] {
                alive = true;
                QApplication::exit(0);
            });
            later.start(50);
            QApplication::exec();
            std::exit(alive && QApplication::instance() == &host ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FormsQtProcess, NumbersKeepTheirFormAndTheProcessEndsWithAWindowOpen) {
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", "C.UTF-8", 1);
            Silent& events = *new Silent;
            CurrentToolkit().Create(kPlan, events).release()->Show();
            CurrentToolkit().ProcessEvents();
            const bool as_before = std::string(std::setlocale(LC_NUMERIC, nullptr)) == "C";
            std::exit(as_before && std::string(std::setlocale(LC_CTYPE, nullptr)) == "C.UTF-8" ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tav
