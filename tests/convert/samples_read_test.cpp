// Every kind of sample document is read back into exactly the fields it was made of. What is expected comes
// from the samples' model, never from the bytes, so the reader and the generator check each other.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "convert/load_rtf_file.h"
#include "samples/generator.h"
#include "support/support.h"

namespace tav::samples {
namespace {

using test::MessageList;
using test::TempFolder;

constexpr Cut kCuts[] = {Cut::None, Cut::BetweenGroups, Cut::InsideGroup};
constexpr Letters kLetters[] = {Letters::LowerHex, Letters::UpperHex, Letters::Unicode, Letters::UnicodeHex,
                                Letters::Raw};

// Without the tabs that begin the lines.
std::string WithoutIndentation(const std::string& entry) {
    std::string text;
    for (char c : entry)
        if (c != '\t' || !(text.empty() || text.back() == '\n')) text += c;
    return text;
}

// The line in which two texts part, for a readable message.
std::string FirstDifference(const std::string& a, const std::string& b) {
    const auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
    const std::size_t begin = a.rfind('\n', static_cast<std::size_t>(at)) + 1;
    return "\nread:     " + a.substr(begin, 100) + "\nexpected: " + b.substr(std::min(begin, b.size()), 100);
}

void ExpectReadBack(const Document& document) {
    const TempFolder folder;
    const MessageList messages;
    WriteDocument(folder.path(), document);
    const std::string read = WithoutIndentation(LoadRtfFile(folder.path(), document.name));
    const std::string expected = CatalogueEntry(document);
    EXPECT_TRUE(read == expected) << ToUtf8(document.name) << FirstDifference(read, expected);
    EXPECT_TRUE(messages.messages.empty());
}

TEST(SamplesRead, StandardSet) {
    std::size_t statements = 0;
    for (const Document& document : SampleSet()) {
        if (!document.name.ends_with(u".rtf")) continue;
        ExpectReadBack(document);
        ++statements;
    }
    EXPECT_GT(statements, 10u);
}

TEST(SamplesRead, StatementsOfEveryMake) {
    int number = 0;
    for (int layout : {1, 2}) {
        for (Cut cut : kCuts) {
            for (Letters letters : kLetters) {
                ++number;
                SCOPED_TRACE(number);
                ExpectReadBack(MakeStatement({.rows = number % 7 * 9,
                                              .layout = layout,
                                              .cut = cut,
                                              .letters = letters,
                                              .repeat_numbering = number % 2 == 0,
                                              .second_line_every = number % 4,
                                              .parts = 1 + number % 3,
                                              .seed = static_cast<std::uint64_t>(number)}));
            }
        }
    }
}

TEST(SamplesRead, ActsOfEveryMake) {
    int number = 0;
    for (Cut cut : kCuts) {
        for (Letters letters : kLetters) {
            ++number;
            SCOPED_TRACE(number);
            ExpectReadBack(MakeActRtf({.all_zero = number % 5 == 0,
                                       .cut = cut,
                                       .letters = letters,
                                       .parts = 1 + number % 3,
                                       .seed = static_cast<std::uint64_t>(number)}));
        }
    }
}

TEST(SamplesRead, ALongStatement) {
    ExpectReadBack(MakeStatement({.rows = 1500, .layout = 2, .cut = Cut::InsideGroup, .seed = 9}));
}

}  // namespace
}  // namespace tav::samples
