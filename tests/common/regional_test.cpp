#include "common/regional.h"

#include <gtest/gtest.h>

namespace tav {
namespace {

TEST(Numbers, RussianForm) {
    struct Case {
        TextView text;
        std::optional<double> number;
    };
    for (const Case& c :
         {Case{u"123,45", 123.45}, Case{u"-0,5", -0.5}, Case{u"+7", 7.0},
          Case{u"1 234\u00A0567,8", 1234567.8}, Case{u" 5 ", 5.0}, Case{u",5", 0.5}, Case{u"5,", 5.0},
          Case{u"123.45", std::nullopt}, Case{u"", std::nullopt}, Case{u"-", std::nullopt},
          Case{u"1,2,3", std::nullopt}, Case{u"1e5", std::nullopt}, Case{u"1-2", std::nullopt},
          Case{u"0x10", std::nullopt}, Case{u"1,2 3", std::nullopt}}) {
        EXPECT_EQ(ParseNumber(c.text), c.number) << ToUtf8(c.text);
    }
}

TEST(Numbers, MoneyIsExact) {
    EXPECT_EQ(ParseMoney(u"922 337 203 685,47"), Money{9223372036854700});
    EXPECT_EQ(ParseMoney(u"-0,00005"), Money{0});
    EXPECT_EQ(ParseMoney(u"0,00015"), Money{2});
    EXPECT_EQ(ParseMoney(u"0,000151"), Money{2});
    EXPECT_EQ(ParseMoney(u"99999999999999999999"), std::nullopt);
    EXPECT_EQ(ParseInteger(u"05"), 5);
    EXPECT_EQ(ParseInteger(u"5,0"), std::nullopt);
    EXPECT_EQ(ParseInteger(u"99999999999999999999"), std::nullopt);
}

TEST(Numbers, Formats) {
    EXPECT_EQ(FormatNumber(1234.5), u"1234,5");
    EXPECT_EQ(FormatNumber(-0.0), u"0");
    EXPECT_EQ(FormatNumber(1e21), u"1000000000000000000000");
    EXPECT_EQ(FormatAmount(1234567.891), u"1\u00A0234\u00A0567,89");
    EXPECT_EQ(FormatAmount(0), u"0,00");
    EXPECT_EQ(FormatAmount(-999.995), u"-1\u00A0000,00");
    EXPECT_EQ(FormatAmount(-0.001), u"0,00");
}

TEST(Dates, TextAndBack) {
    struct Case {
        TextView text;
        std::optional<double> serial;
    };
    for (const Case& c :
         {Case{u"30.12.1899", 0.0}, Case{u"01.01.1900", 2.0}, Case{u"01.02.2011", 40575.0},
          Case{u"1.2.2011", 40575.0}, Case{u"29.02.2012", 40968.0}, Case{u"29.02.2011", std::nullopt},
          Case{u"31.12.9999", 2958465.0}, Case{u"01.01.29", 47119.0}, Case{u"01.01.30", 10959.0},
          Case{u"2011-02-01", std::nullopt}, Case{u"01.13.2011", std::nullopt}, Case{u"01.02", std::nullopt},
          Case{u"", std::nullopt}, Case{u"001.02.2011", std::nullopt}, Case{u"01.02.20111", std::nullopt},
          Case{u"01.02.2011x", std::nullopt}}) {
        const auto date = ParseDate(c.text);
        EXPECT_EQ(date ? std::optional(date->serial) : std::nullopt, c.serial) << ToUtf8(c.text);
    }
    EXPECT_EQ(FormatDate({40575}), u"01.02.2011");
    EXPECT_EQ(FormatDate({40544.5}), u"01.01.2011 12:00:00");
    EXPECT_EQ(FormatDate({-1.25}), u"29.12.1899 06:00:00");
    for (int day = -600000; day < 2900000; day += 997) {
        EXPECT_EQ(ParseDate(FormatDate({static_cast<double>(day)}))->serial, day);
    }
}

TEST(Values, ConvertToText) {
    EXPECT_EQ(ValueText(Null()), u"");
    EXPECT_EQ(ValueText(true), u"-1");
    EXPECT_EQ(ValueText(Money{-12345}), u"-1,2345");
    EXPECT_EQ(ValueText(Date{2}), u"01.01.1900");
}

}  // namespace
}  // namespace tav
