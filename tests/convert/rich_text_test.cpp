#include "convert/rich_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/support.h"

namespace tav {
namespace {

using std::string_literals::operator""s;

struct Case {
    std::string body;  // behind "{\rtf1\ansi\ansicpg1251 "
    Text text;
};

std::string Document(std::string_view body) {
    return std::string("{\\rtf1\\ansi\\ansicpg1251 ").append(body);
}

void Expect(const std::vector<Case>& cases) {
    RichText reader;
    for (const Case& c : cases) {
        EXPECT_EQ(std::string(reader.Read(Document(c.body))), test::Bytes(c.text)) << c.body;
    }
}

const std::string kFonts =
    "{\\fonttbl{\\f0\\fnil\\fcharset204 Arial;}{\\f1\\fcharset0 Arial;}{\\f2\\fcharset1 A;}"
    "{\\f3\\fcharset255 T;}{\\f4\\cpg20866 K;}\\f5\\fcharset0 Flat;}";

TEST(RichText, BreaksLines) {
    Expect({
        {"a\\par b\\sect c\\page d}", u"a\r\nb\r\nc\r\nd"},
        {"abc\\par}", u"abc"},
        {"abc\\par }", u"abc"},
        {"abc\\par\r\n}", u"abc"},
        {"abc\\par\\par}", u"abc\r\n"},
        {"abc\\par\\pard}", u"abc"},
        {"{abc\\par}}", u"abc"},
        {"abc\\par\\sect }", u"abc\r\n"},
        {"abc\\page", u"abc"},
        {"abc\\par\\line}", u"abc\r\n "},
        {"a\r\nb\nc\rd}", u"abcd"},
        {"a\\\r\nb\\\nc\\\rd}", u"a\r\nb\r\nc\r\nd"},
        {"a\\line b\\tab c\td}", u"a b\tc\td"},
    });
}

TEST(RichText, DropsWhatFollowsTheOutermostBrace) {
    RichText reader;
    EXPECT_EQ(reader.Read(Document("abc}\\par }\\sect }")), "abc");
    EXPECT_FALSE(reader.dropped_text());
    EXPECT_EQ(reader.Read(Document("abc}{\\pict 00}\\~ {\\f1 }\\cell }")), "abc");
    EXPECT_FALSE(reader.dropped_text());
    EXPECT_EQ(reader.Read(Document("abc} {def\\par} \\cell\\row}")), "abc");
    EXPECT_TRUE(reader.dropped_text());
    EXPECT_EQ(reader.Read(Document("next}")), "next");
    EXPECT_FALSE(reader.dropped_text());
}

TEST(RichText, KeepsTheTextOfOpenGroups) {
    Expect({{"{a{b{c", u"abc"}, {"{a{b}", u"ab"}, {"", u""}});
}

TEST(RichText, IsEmptyForWhatIsNoRichText) {
    RichText reader;
    for (const std::string_view other :
         {"", "abc", "{", "{\\rt", "{\\r\\rtf1 abc}", " {\\rtf1 abc}", "\\rtf1 abc"}) {
        EXPECT_EQ(reader.Read(other), "") << other;
    }
    EXPECT_EQ(reader.Read("{\\rtf abc"), "abc");
}

TEST(RichText, ReadsControlWords) {
    Expect({
        {"x\\pageabc y}", u"xy"},
        {"\\phpg posx612 y}", u"posx612 y"},
        {"posx612\\pvpg y}", u"posx612y"},
        {"a\\b0\\fs-24 b\\cf1  c}", u"ab c"},
        {"a\\fs-b}", u"a-b"},
        {"a\\PAR b\\Par c}", u"abc"},
        {"a\\fs99999999999999999999999999999999999999999999999999 b}", u"ab"},
        {"a\\" + std::string(1000, 'w') + "1 b}", u"ab"},
        {"\\v hidden\\v0  shown}", u"hidden shown"},
        {"\\\\\\{\\}}", u"\\{}"},
        {"a\\-b\\:c\\|d\\^e}", u"ab:cde"},
        {"a\\~b\\_c}", u"a\u00A0b-c"},
        {"\\lquote a\\rquote\\ldblquote b\\rdblquote\\emdash\\endash\\bullet}", u"‘a’“b”—–•"},
        {"a\\emspace b\\enspace c\\qmspace d}", u"a b c d"},
        {"a\\", u"a"},
    });
}

TEST(RichText, ReadsBytesByTheFontsCharset) {
    Expect({
        {"\\'c0\\'E0\\'f0\\'Af}", u"АарЇ"},
        {"\xC0\xE0}", u"Аа"},
        {kFonts + "\\f0\\'c0\\f1\\'c0\\'93\\f2\\'c0\\f3\\'80\\f4\\'c1\\f5\\'c0\\f9\\'c0}", u"А?“ААа?А"},
        {kFonts + "\\f3\x80{\\f1\xC0}\x80\\plain\xC0}", u"А?АА"},
        {"\\deff3" + kFonts + "\x80\\f0\xC0\\plain\x80}", u"ААА"},
        {"\\ansicpg866 \x80\\f7\x80}", u"АА"},
        {"\\ansicpg866" + kFonts + "\\f2\x80\\f0\x80}", u"АЂ"},
        {"\\ansicpg4711 \xC0}", u"А"},
        {"\\f-1\xC0\\f70000\xC0}", u"АА"},
        {"a\\'zzb\\'4}", u"azzb4"},
        {"\\'5c\\'7b\\'7d}", u"\\{}"},
        {"a\\'00\\'01\\'0d\\'09b}", u"a\tb"},
        {"a\0b\x01\x0C\x1F c}"s, u"ab c"},
        {"a\\p\0ar b}"s, u"aar b"},
    });
}

TEST(RichText, ReadsUnicodeAndPassesItsFallback) {
    Expect({
        {"\\u1040\\'c0b}", u"Аb"},
        {"\\u1105?b}", u"ёb"},
        {"\\u1105 ?b}", u"ёb"},
        {"\\uc0\\u1105?b}", u"ё?b"},
        {"\\uc2\\u1105\\'3f\\'3fb\\u1105xyz}", u"ёbёz"},
        {"{\\uc0\\u1105?}\\u1105?b}", u"ё?ёb"},
        {"\\uc3\\u1105a{b}c}", u"ёbc"},
        {"\\u1105\\tab b}", u"ёb"},
        {"\\uc2\\u1105\\bin3 }}}xb}", u"ёb"},
        {"\\u1105\r\n?b}", u"ёb"},
        {"\\u-3913?\\u8209?\\u8722?\\u8194?\\u160?}", u"?-- \u00A0"},
        {"\\u-10179?\\u-8704?b}", u"?b"},
        {"\\u99999999999?\\u-99999999999?\\u65536?b}", u"???b"},
        {"\\u0?\\u7?\\u13?\\u b}", u"b"},
        {"\\u1105}c", u"ё"},
    });
}

TEST(RichText, DropsDestinations) {
    for (const std::string word : {"\\*\\generator", "\\*", "\\pict", "\\shp", "\\sp", "\\header",
                                   "\\headerf", "\\footer", "\\footerr", "\\footnote", "\\pntext",
                                   "\\fldinst", "\\colortbl", "\\stylesheet", "\\info", "\\fonttbl"}) {
        Expect({{"a{" + word + " b{c\\'7d\\}\\par}d\\bin3 }}}e\\u1040 f}g}", u"ag"}});
    }
    Expect({
        {"a{\r\n\\*\\x b}c}", u"ac"},
        {"a\\*\\x b}", u"ab"},
        {"a{b\\pict c}d}", u"abd"},
        {"a{\\field{\\*\\fldinst x}{\\fldrslt b}}{\\listtext c\\tab}{\\object{\\result d}}{\\unknown e}}",
         u"abc\tde"},
        {"a{\\shp{\\*\\shpinst{\\sp{\\sn n}{\\sv v}}}}b}", u"ab"},
        {"a{\\pict 00", u"a"},
    });
}

TEST(RichText, PassesBinaryData) {
    Expect({
        {"a\\bin5 {\\}}}b}", u"ab"},
        {"a\\bin0 b}", u"ab"},
        {"a\\bin-7 b}", u"ab"},
        {"a\\bin b}", u"ab"},
        {"a\\bin99999999999999999999 b}", u"a"},
    });
}

TEST(RichText, LaysOutTableRows) {
    Expect({
        {"a\\cell b\\cell\\row}", u"\r\na\tb\t\r\n"},
        {"x\\par a\\cell b\\cell\\row c\\cell\\row y}", u"x\r\n\r\na\tb\t\r\n\r\nc\t\r\ny"},
        {"a\\nestcell b\\cell\\row}", u"\r\na\tb\t\r\n"},
        {"\\intbl x\\par y\\cell z\\cell\\row a\\cell\\row}", u"\r\nx\r\ny\tz\t\r\n\r\na\t\r\n"},
        {"x}\\cell", u"x"},
        {"\\intbl x}y\\par\\cell", u"x"},
    });
}

TEST(RichText, NestsToAnyDepth) {
    const std::string open(100'000, '{');
    const std::string close(100'000, '}');
    RichText reader;
    EXPECT_EQ(reader.Read(Document(open + "a" + close + "b}")), "ab");
    EXPECT_EQ(reader.Read(Document(open + "\\fonttbl{\\f1\\fcharset0 A;}}{\\f1 a" + close + "\xC0}")),
              "a\xC0");
    std::string fonts = kFonts;
    for (int i = 0; i < 100'000; ++i) fonts += "{\\f1";
    EXPECT_EQ(reader.Read(Document("\\f0" + fonts + "\\'c0" + close + "\\'c0}")), "?\xC0");
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
