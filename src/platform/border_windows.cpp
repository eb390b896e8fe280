#include "platform/border_windows.h"

#include <optional>

#include "common/on_left.h"
#include "platform/border_frame_windows.h"

namespace tav::win32 {
namespace {

struct OwnBorder : Border {
    std::optional<OwnFloatingPoint> floating_point{std::in_place};
    OnLeft* outer = OnLeft::Innermost();
};

void Left(Border& border) {
    auto& own = static_cast<OwnBorder&>(border);
    OnLeft::LeaveTo(own.outer);
    own.floating_point.reset();
}

}  // namespace

void CallAtBorder(void (*body)(void* argument), void* argument) noexcept {
    OwnBorder border;
    border.body = body;
    border.argument = argument;
    border.left = Left;
    CallNoticing(border);
}

}  // namespace tav::win32
