#include "convert/rich_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/support.h"

namespace tav {
namespace {

using std::string_literals::operator""s;

const std::string kOpening = "{\\rtf1\\ansi\\ansicpg1251 ";

TEST(RichText, ReadsDocuments) {
    RichText reader;
    test::ExpectTranscript("convert/data/rich-text.txt", [&](TextView body) {
        const Text text = test::Pictured(reader.Read(kOpening + test::Unpictured(body)));
        return reader.dropped_text() ? text + u"!" : text;
    });
}

TEST(RichText, IsEmptyForWhatIsNoRichText) {
    RichText reader;
    for (const std::string_view other :
         {"", "abc", "{", "{\\rt", "{\\r\\rtf1 abc}", " {\\rtf1 abc}", "\\rtf1 abc"}) {
        EXPECT_EQ(reader.Read(other), "") << other;
    }
    EXPECT_EQ(reader.Read("{\\rtf abc"), "abc");
}

TEST(RichText, NestsToAnyDepth) {
    const std::string open(100'000, '{');
    const std::string close(100'000, '}');
    RichText reader;
    EXPECT_EQ(reader.Read(kOpening + open + "a" + close + "b}"), "ab");
    EXPECT_EQ(reader.Read(kOpening + open + "\\fonttbl{\\f1\\fcharset0 A;}}{\\f1 a" + close + "\xC0}"),
              "a\xC0");
    std::string fonts = "{\\fonttbl{\\f1\\fcharset0 A;}}";
    for (int i = 0; i < 100'000; ++i) fonts += "{\\f1";
    EXPECT_EQ(reader.Read(kOpening + fonts + "\\'c0" + close + "\\'c0}"), "?\xC0");
}

// Whatever the bytes: the text is bounded and made of characters and whole line ends.
TEST(RichText, StandsAnyBytes) {
    const std::vector<std::string> pieces = {
        "{",         "}",           "\\",      "\\'",     "\\'c",    "\\'c0",    "\\par", "\\cell ", "\\row ",
        "\\u1040",   "\\uc9 ",      "\\bin",   "\\bin4 ", "\\*",     "\\pict",   "\\f1",  "\\f",     "\r\n",
        "\\fonttbl", "\\fcharset0", "\\plain", "\\",      "\0\x01"s, "\xC0",     "text",  "\\page",  "\\~",
        "-12",       " ",           "\\deff1", "\\rtf1",  "{\\*",    "\\sect }", "\\par}"};
    std::mt19937 random(20110401);
    RichText reader;
    for (int round = 0; round < 5'000; ++round) {
        std::string document = "{\\rtf1";
        for (std::size_t n = random() % 40; n > 0; --n) document += pieces[random() % pieces.size()];
        const std::string text(reader.Read(document));
        ASSERT_LE(text.size(), document.size()) << document;
        for (std::size_t i = 0; i < text.size(); ++i) {
            ASSERT_EQ(text[i] == '\r', i + 1 < text.size() && text[i + 1] == '\n') << document;
            ASSERT_TRUE(static_cast<unsigned char>(text[i]) >= 0x20 || text[i] == '\t' || text[i] == '\r' ||
                        text[i] == '\n')
                << document;
        }
        ASSERT_EQ(reader.Read(document), text) << "the second reading differs: " << document;
    }
}

}  // namespace
}  // namespace tav
