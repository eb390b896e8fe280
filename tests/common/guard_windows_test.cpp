#include <gtest/gtest.h>

#include "common/guard.h"
#include "support/support.h"

namespace tav {
namespace {

int Divide(int by) {
    return 100 / by;
}

// Where the compiler hands the processor's exceptions to C++: in 64 bits.
TEST(Guard, ShowsWhatTheProcessorRaises) {
    int (*volatile divide)(int) = Divide;
    test::MessageList shown;
    bool left = false;
    try {
        Guarded(u"x", [&] { divide(0); });
    } catch (...) {
        left = true;
    }
    EXPECT_FALSE(left);
    EXPECT_EQ(shown.messages,
              (std::vector<Message>{{u"x", u"Application-defined or object-defined error\r\n"}}));
}

}  // namespace
}  // namespace tav
