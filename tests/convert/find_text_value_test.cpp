#include "convert/find_text_value.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

#include "support/support.h"

namespace tav {
namespace {

using test::Bytes;
using test::MessageList;

struct Case {
    std::int32_t pos;
    std::string text;
    std::int32_t pos_after;
    TextView value;
};

TEST(FindTextValue, ReadsGroups) {
    const Case cases[] = {
        {0, "{\\f1 a}", 0, u""},
        {1, "{\\f1 a", 0, u""},
        {99, "{\\f1 a}", 0, u""},
        {1, "{\\f1 a}\\par", 8, u"a"},
        // Groups without a gap are one text, whatever is missing in the last one.
        {1, "{\\f1 a}{\\f1 b}", 15, u"ab"},
        {1, "{\\f1 a}{\\f1 b", 0, u"a"},
        {1, "{\\f1 a} {\\f1 b}", 8, u"a"},
        {5, "{\\f1{\\f1 a}{\\f1 b}}", 19, u"ab"},
        // The key: \cf1 wins; runs are joined without the other words' texts.
        {1, "{\\f1 a\\cf1 b\\f1 c\\cf1 d\\b}", 27, u"bd"},
        {1, "{\\f1 a\\b x\\f1 \\f1 c}", 21, u"ac"},
        {1, "{\\F1 a\\cf12 b}", 15, u"b"},
        // No key: what follows the last control word, but for the value of a shape's property.
        {1, "{\\b a\\f2\\fs20 b c}", 19, u"b c"},
        {1, "{\\b a\\par}", 11, u""},
        {1, "{\\sn shapeType}", 16, u""},
        {1, "{\\ x}", 6, u"x"},
        {1, "{\\f1 a\r\nb\r\r\nc\n}", 16, u"ab\rc\n"},
    };
    for (const Case& c : cases) {
        const MessageList messages;
        std::int32_t pos = c.pos;
        EXPECT_EQ(FindTextValue(pos, c.text), Bytes(c.value)) << c.text;
        EXPECT_EQ(pos, c.pos_after) << c.text;
        EXPECT_TRUE(messages.messages.empty()) << c.text;
    }
}

TEST(FindTextValue, DecodesEscapes) {
    const std::pair<std::string, TextView> cases[] = {
        {"\\'c0\\'ff\\'e0", u"Ая\u0430"},
        {"\\'b9 1", u"№ 1"},
        {"\\u1040\\'c0\\u1103\\'ff", u"Ая"},
        {"\\u1040?", u"?"},
        {"\\uc1\\u8470\\'b97", u"№7"},
        {"1\\u160\\'a0000\\~000", u"1000000"},
        {"1\\_2", u"-1"},
        // What stays ends the run.
        {"a\\'C0", u"a"},
        {"a\\u1040\\'C0", u"a"},
        {"a\\'b8", u"a"},
        {"a\\'a8", u"a"},
        {"a\\u1104 b", u"a"},
        {"a\\u1000 b", u"a"},
        {"a\\u8471", u"a"},
        // One replacement makes the escape of a later one, or of one that is over.
        {"a\\u10\\u100150b", u"ab"},
        {"a\\u10\\u105001b", u"a"},
        {"a\\u10\\u100101b", u"a"},
        {"a\\u10\\u1050\\u100120b", u"a"},
        {"a\\'\\~a0b", u"a"},
        {"a\\u\\u1050c1b", u"ab"},
    };
    for (const auto& [escapes, value] : cases) {
        std::int32_t pos = 1;
        EXPECT_EQ(FindTextValue(pos, "{\\f1 " + escapes + "}"), Bytes(value)) << escapes;
    }
}

// The replacements one after the other, as they are defined.
std::string OneByOne(std::string text) {
    const auto replace = [&](const std::string& what, const std::string& with) {
        for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += with.size())
            text.replace(at, what.size(), with);
    };
    // A removal is not looked at again by the replacement that made it.
    const auto remove = [&](const std::string& what) {
        replace(what, "\x01");
        std::erase(text, '\x01');
    };
    char escape[8];
    for (int byte = 185; byte <= 255; ++byte) {
        std::snprintf(escape, sizeof escape, "\\'%02x", static_cast<unsigned>(byte));
        replace(escape, std::string(1, static_cast<char>(byte)));
    }
    for (int number = 1; number <= 103; ++number) {
        std::snprintf(escape, sizeof escape, "\\u1%03d", number);
        remove(escape);
    }
    for (const char* word : {"\\u8470", "\\uc1", "\\u160", "\\'a0", "\\~"}) remove(word);
    return text;
}

// The runs behind "\f1 " of a text that has such a word.
std::string Runs(const std::string& text) {
    std::string runs;
    for (std::size_t at = 0; (at = text.find("\\f1 ", at)) != text.npos;) {
        at += 4;
        runs += text.substr(at, text.find('\\', at) - at);
    }
    return runs;
}

TEST(FindTextValue, OnePassIsOneReplacementAfterTheOther) {
    const char* const pieces[] = {"\\",  "\\u",    "\\u1", "\\u10", "\\u100", "\\u1001", "\\u1050",
                                  "0",   "1",      "3",    "6",     "8470",   "c1",      "\\'",
                                  "a0",  "\\'e0",  "~",    "5",     "\\f1 ",  "\\f1 x",  "\\\\u1002f1 ",
                                  "x y", "\\u8470"};
    std::mt19937 random(1);
    int changed = 0;
    int shown = 0;
    for (int round = 0; round < 6'000; ++round) {
        std::string text = "\\f1 !";
        for (unsigned left = random() % 14; left > 0; --left) text += pieces[random() % std::size(pieces)];
        const std::string replaced = OneByOne(text);
        const std::string runs = Runs(replaced);
        changed += replaced != text ? 1 : 0;
        shown += runs.size() > 1 ? 1 : 0;
        std::int32_t pos = 1;
        ASSERT_EQ(FindTextValue(pos, text + "}"), runs) << text;
    }
    EXPECT_GT(changed, 3'000);
    EXPECT_GT(shown, 3'000);
}

TEST(FindTextValue, ReadsManyGroupsAndLongOnes) {
    std::string groups;
    std::string words;
    for (int i = 0; i < 100'000; ++i) {
        groups += "{\\f1 \\'e0" + std::to_string(i) + "}";
        words += "\xE0" + std::to_string(i);
    }
    std::int32_t pos = 1;
    EXPECT_EQ(FindTextValue(pos, groups), words);
    EXPECT_EQ(pos, static_cast<std::int32_t>(groups.size()) + 1);
    const std::string long_text(1'000'000, 'a');
    pos = 1;
    EXPECT_EQ(FindTextValue(pos, "{\\f1 " + long_text + "}"), long_text);
}

TEST(FindTextValue, ShowsWhatFails) {
    const MessageList messages;
    std::int32_t pos = 1;
    EXPECT_EQ(FindTextValue(pos, "{\\f1 a}{b}{\\f1 c}"), "ac");
    EXPECT_EQ(pos, 18);
    pos = -1;
    EXPECT_EQ(FindTextValue(pos, "{\\f1 a}"), "");
    EXPECT_EQ(pos, -1);
    pos = 1;
    EXPECT_EQ(FindTextValueQuietly(pos, "{\\f1 a}{b}"), "a");
    pos = 0;
    EXPECT_EQ(GetKeyValue(pos, "\\f1 a", "f1 "), "");
    const Text failure = u"Invalid procedure call or argument\r\n";
    EXPECT_EQ(messages.messages, (std::vector<Message>{{u"Ошибка в функции FindTextValue", failure},
                                                       {u"Ошибка в функции FindTextValue", failure},
                                                       {u"Ошибка в функции getbase", failure}}));
}

TEST(GetKeyValue, FindsTheNextWord) {
    const Case cases[] = {
        {1, "x\\f1 a b\\par", 9, u"a b"},
        {1, "\\f1 \\par", 5, u""},
        {1, "\\f1 a", 5, u"a"},
        {2, "\\f1 a", 0, u""},
        {1, "\\F1 a", 0, u""},
        {1, "f1 a", 0, u""},
        {5, "\\f1 a\\f1 b", 10, u"b"},
        {1, "\\cf1 a", 0, u""},
        {1, "\\f1 ", 5, u""},
    };
    for (const Case& c : cases) {
        std::int32_t pos = c.pos;
        EXPECT_EQ(GetKeyValue(pos, c.text, "f1 "), Bytes(c.value)) << c.text;
        EXPECT_EQ(pos, c.pos_after) << c.text;
    }
}

}  // namespace
}  // namespace tav
