#include "convert/read_ahead.h"

#include <gtest/gtest.h>

#include <string>

#include "common/failure.h"

namespace tav {
namespace {

// Writes the steps down; ends the reading at one of them.
class Told : public ReadingSteps {
 public:
    explicit Told(int last = -1) : last_(last) {}
    void Begin(std::size_t pages) override { text += std::to_string(pages) + ":"; }
    bool GoOn() override { return last_-- != 0; }
    void Step() override { text += '.'; }

    std::string text;

 private:
    int last_;
};

// A document of as many steps as the last digit of its number; the seventh fails after its first.
ScannedDocument Make(std::size_t number, ReadingSteps& steps) {
    ScannedDocument made;
    const std::size_t count = number % 10;
    steps.Begin(count);
    for (std::size_t step = 0; step < count; ++step) {
        if (!steps.GoOn()) return made;
        steps.Step();
        if (number == 7) throw Failure(RunTimeError::Overflow);
    }
    made.conversion.entry = std::to_string(number);
    return made;
}

TEST(ReadAhead, IsReadingInOrder) {
    const auto make = [](RtfReader&, std::size_t number, ReadingSteps& steps) { return Make(number, steps); };
    constexpr std::size_t kDocuments = 5000;
    ReadAhead ahead(kDocuments, make);
    for (std::size_t number = 0; number < kDocuments - 1; ++number) {
        Told told;
        Told expected;
        if (number == 7) {
            EXPECT_THROW(ahead.Next(told), Failure);
            EXPECT_EQ(told.text, "7:.");
        } else {
            ASSERT_EQ(ahead.Next(told).conversion.entry, Make(number, expected).conversion.entry);
            ASSERT_EQ(told.text, number % 10 == 0 ? "" : expected.text);
        }
    }
    Told cancelled(3);
    EXPECT_EQ(ahead.Next(cancelled).conversion.entry, "");
    EXPECT_EQ(cancelled.text, "9:...");
}

}  // namespace
}  // namespace tav
