#include "convert/find_text_value.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "common/get_next.h"
#include "common/regional.h"
#include "support/support.h"

namespace tav {
namespace {

// The lines of a table: position, text, position after it, value; "↵" is CR LF.
template <class Call>
void ExpectTable(std::string_view path, Call call) {
    const Text table = ReplaceAll(FromUtf8(test::TestFile(path)), u"↵", u"\r\n");
    const test::MessageList messages;
    EXPECT_FALSE(table.empty());
    for (TextView rest = table; !rest.empty();) {
        auto pos = static_cast<std::int32_t>(*ParseInteger(GetNext(rest, u"|")));
        const Text text(GetNext(rest, u"|"));
        const auto pos_after = *ParseInteger(GetNext(rest, u"|"));
        EXPECT_EQ(call(pos, test::Bytes(text)), test::Bytes(GetNext(rest, u"\n"))) << ToUtf8(text);
        EXPECT_EQ(pos, pos_after) << ToUtf8(text);
    }
    EXPECT_TRUE(messages.messages.empty());
}

TEST(FindTextValue, ReadsTheTable) {
    ExpectTable("convert/data/find-text-value.txt", FindTextValue);
}

TEST(GetKeyValue, ReadsTheTable) {
    ExpectTable("convert/data/get-key-value.txt",
                [](std::int32_t& pos, std::string_view text) { return GetKeyValue(pos, text, "f1 "); });
}

// The replacements one after the other, as they are defined; none looks again at what it has made.
std::string OneByOne(std::string text) {
    const auto replace = [&](const std::string& what, const std::string& with) {
        for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += with.size())
            text.replace(at, what.size(), with);
    };
    const auto remove = [&](const std::string& what) {
        replace(what, "\x01");
        std::erase(text, '\x01');
    };
    const std::string digits = "0123456789abcdef";
    for (std::size_t byte = 185; byte <= 255; ++byte)
        replace({'\\', '\'', digits[byte / 16], digits[byte % 16]}, {static_cast<char>(byte)});
    for (int number = 1; number <= 103; ++number) remove("\\u" + std::to_string(1000 + number));
    for (const char* word : {"\\u8470", "\\uc1", "\\u160", "\\'a0", "\\~"}) remove(word);
    return text;
}

TEST(FindTextValue, OnePassIsOneReplacementAfterTheOther) {
    const char* const pieces[] = {"\\",  "\\u",    "\\u1", "\\u10", "\\u100", "\\u1001", "\\u1050",
                                  "0",   "1",      "3",    "6",     "8470",   "c1",      "\\'",
                                  "a0",  "\\'e0",  "~",    "5",     "\\f1 ",  "\\f1 x",  "\\\\u1002f1 ",
                                  "x y", "\\u8470"};
    std::mt19937 random(1);
    int changed = 0;
    for (int round = 0; round < 6'000; ++round) {
        std::string text = "\\f1 !";
        for (unsigned left = random() % 14; left > 0; --left) text += pieces[random() % std::size(pieces)];
        const std::string replaced = OneByOne(text);
        changed += replaced != text ? 1 : 0;
        std::string runs;
        for (std::size_t at = 0; (at = replaced.find("\\f1 ", at)) != replaced.npos;) {
            at += 4;
            runs += replaced.substr(at, replaced.find('\\', at) - at);
        }
        std::int32_t pos = 1;
        ASSERT_EQ(FindTextValue(pos, text + "}"), runs) << text;
    }
    EXPECT_GT(changed, 3'000);
}

TEST(FindTextValue, ReadsManyGroups) {
    std::string groups;
    std::string words;
    for (int i = 0; i < 100'000; ++i) {
        groups += "{\\f1 \\'e0" + std::to_string(i) + "}";
        words += "\xE0" + std::to_string(i);
    }
    std::int32_t pos = 1;
    EXPECT_EQ(FindTextValue(pos, groups), words);
    EXPECT_EQ(pos, static_cast<std::int32_t>(groups.size()) + 1);
}

TEST(FindTextValue, ShowsWhatFails) {
    const test::MessageList messages;
    std::int32_t pos = 1;
    EXPECT_EQ(FindTextValue(pos, "{\\f1 a}{b}{\\f1 c}"), "ac");
    EXPECT_EQ(pos, 18);
    EXPECT_EQ(FindTextValue(pos = -1, "{\\f1 a}"), "");
    EXPECT_EQ(pos, -1);
    EXPECT_EQ(FindTextValueQuietly(pos = 1, "{\\f1 a}{b}"), "a");
    EXPECT_EQ(GetKeyValue(pos = 0, "\\f1 a", "f1 "), "");
    const Text failure = u"Invalid procedure call or argument\r\n";
    const Message shown{u"Ошибка в функции FindTextValue", failure};
    EXPECT_EQ(messages.messages,
              (std::vector<Message>{shown, shown, {u"Ошибка в функции getbase", failure}}));
}

}  // namespace
}  // namespace tav
