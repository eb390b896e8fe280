#include "common/text.h"

#include <gtest/gtest.h>

#include "common/get_next.h"
#include "common/windows1251.h"

namespace tav {
namespace {

TEST(Utf8, SurvivesAnyBytes) {
    for (const std::string& bytes :
         {std::string("Учёт № 1"), std::string("a\0b", 3), std::string("\xFF\xFE\x80"), std::string("\xD0"),
          std::string("\xED\xA0\x80"), std::string("\xF0\x9F\x98\x80!"), std::string("\xC0\xAF\xF5\x90"),
          std::string("\xC3\xC0\xE1\x80\xC0\xF1\x80\x80\xC0"),
          std::string("\xC3\x7F\xE0\x9F\xBF\xF0\x8F\xBF\xBF")}) {
        EXPECT_EQ(ToUtf8(FromUtf8(bytes)), bytes);
    }
    EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80").size(), 2u);
    EXPECT_EQ(ToUtf8(Text{0xD800, u'x'}), "\xEF\xBF\xBDx");
}

TEST(LetterCase, CoversLatinGreekAndCyrillic) {
    EXPECT_EQ(UpperCase(u"az пеня ая ё № à ÿ ž ґ ω 1"), u"AZ ПЕНЯ АЯ Ё № À Ÿ Ž Ґ Ω 1");
    EXPECT_EQ(LowerCase(u"ПЕНЯ Ё À Ÿ Ž Ґ Ω ÷ ×"), u"пеня ё à ÿ ž ґ ω ÷ ×");
    for (char16_t c = 0; c < 0x600; ++c) {
        EXPECT_EQ(UpperChar(UpperChar(c)), UpperChar(c)) << int(c);
        EXPECT_EQ(UpperChar(LowerChar(c)), UpperChar(c)) << int(c);
    }
    EXPECT_TRUE(EqualNoCase(u"Выписка.RTF", u"ВЫПИСКА.rtf"));
    EXPECT_FALSE(EqualNoCase(u"а", u"a"));  // Cyrillic and Latin
    EXPECT_LT(CompareNoCase(u"аб", u"АБВ"), 0);
}

TEST(Texts, Pieces) {
    EXPECT_EQ(ReplaceAll(u"a.b.", u".", u", "), u"a, b, ");
    EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(Trim(u"  x y "), u"x y");
    EXPECT_EQ(Trim(u"   "), u"");
    EXPECT_EQ(Right(u"abc", 2), u"bc");
    EXPECT_EQ(Right(u"abc", 9), u"abc");
    EXPECT_EQ(Digits(7, 2), u"07");
    EXPECT_EQ(Digits(-12), u"-12");
}

TEST(GetNextTest, WalksTheList) {
    struct Case {
        TextView list;
        TextView separator;
        TextView item;
        TextView rest;
    };
    for (const Case& c : {Case{u"a|b", u"|", u"a", u"b"}, Case{u"ab", u"|", u"ab", u""},
                          Case{u"", u"|", u"", u""}, Case{u"|a", u"|", u"", u"a"},
                          Case{u"a\r\n", u"\r\n", u"a", u""}, Case{u"aXb", u"x", u"aXb", u""}}) {
        TextView rest = c.list;
        EXPECT_EQ(GetNext(rest, c.separator), c.item);
        EXPECT_EQ(rest, c.rest);
    }
}

TEST(Windows1251, EveryByteGoesThereAndBack) {
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(ToWindows1251(FromWindows1251(static_cast<unsigned char>(byte))), static_cast<char>(byte));
    }
    EXPECT_EQ(FromWindows1251(0xB9), u'№');
    EXPECT_EQ(FromWindows1251("\xC0\xFF\xA8\xB8"), u"АяЁё");
}

TEST(Windows1251, BestFit) {
    EXPECT_EQ(ToWindows1251(u"a\u2011b\u2010c\u2212\u2003d\u202Fe\u00C9"), "a-b-c- d e?");
    EXPECT_EQ(ToWindows1251(FromUtf8("\xF0\x9F\x98\x80.")), "?.");
    EXPECT_TRUE(IsWindows1251(u"Выписка №1 «А».rtf"));
    EXPECT_FALSE(IsWindows1251(u"caf\u00E9.rtf"));
    EXPECT_FALSE(IsWindows1251(FromUtf8("\xFF.rtf")));
}

}  // namespace
}  // namespace tav
