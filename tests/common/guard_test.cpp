#include "common/guard.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/support.h"

namespace tav {
namespace {

TEST(Guard, ShowsTheDescriptionAndALineBreak) {
    test::MessageList shown;
    int result = 0;
    Guarded(u"Ошибка в функции x", [&] {
        result = 3;
        throw Failure(RunTimeError::PathNotFound, u"/a/b");
    });
    Guarded(u"y", [] { throw std::runtime_error("other"); });
    Guarded(u"z", [] { throw std::bad_alloc(); });
    Guarded(u"w", [] {});
    EXPECT_EQ(result, 3);
    EXPECT_EQ(shown.messages, (std::vector<Message>{{u"Ошибка в функции x", u"Path not found: /a/b\r\n"},
                                                    {u"y", u"other\r\n"},
                                                    {u"z", u"Out of memory\r\n"}}));
}

TEST(Failures, SayWhatAndWhere) {
    EXPECT_EQ(Failure(RunTimeError::Overflow).In(u"a.rtf").description(), u"Overflow (a.rtf)");
    EXPECT_EQ(Failure(RunTimeError::DataTypeMismatch, u"p1 = x").In(u"a.rtf").description(),
              u"Data type mismatch in criteria expression. p1 = x (a.rtf)");
    EXPECT_EQ(Failure(u"Record is too large.").description(), u"Record is too large.");
}

}  // namespace
}  // namespace tav
