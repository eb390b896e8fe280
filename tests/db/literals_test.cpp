#include "db/literals.h"

#include <gmock/gmock.h>

#include "support/support.h"

namespace tav {
namespace {

const Date kFirstOfMay2011{40664};

TEST(Literals, TurnNullIntoNothing) {
    EXPECT_EQ(isn(Null()), Value(std::int64_t{0}));
    EXPECT_EQ(isn(Text(u"7")), Value(Text(u"7")));
    EXPECT_EQ(isns(Null()), u"");
    EXPECT_EQ(isns(12.5), u"12,5");
    EXPECT_EQ(isns(kFirstOfMay2011), u"01.05.2011");
}

TEST(Literals, QuoteAsTheyStand) {
    EXPECT_EQ(sns(u""), u"Null");
    EXPECT_EQ(sns(u"a'b"), u"'a'b'");
    EXPECT_EQ(snsi(u""), u"Null");
    EXPECT_EQ(snsi(u"-"), u"Null");
    EXPECT_EQ(snsi(u"0"), u"0");
    EXPECT_EQ(snsi(u"-5"), u"-5");
}

TEST(Literals, WriteNumbersTheRegionalWay) {
    EXPECT_EQ(ToLocalNumber(u"1\u00A0234.50"), u"1234,50");
    EXPECT_EQ(ToLocalNumber(u"1 234.50"), u"1 234,50");
    EXPECT_EQ(ToLocalNumber(u"-1.2.3"), u"-1,2,3");
    EXPECT_EQ(ToLocalNumber(u""), u"");
}

struct BetweenCase {
    TextView date;
    TextView mode;
    bool result;
    TextView rewritten;
};

TEST(DateBetween, RemembersTheRangeOfTheLastComparison) {
    const test::MessageList shown;
    const BetweenCase cases[] = {
        {u"30.12.1899", u"29.12.1899", false, u"30.12.1899"},
        {u"01.02.2011", u"", false, u"01.02.2011"},
        {u"", u"01.01.2011", false, u""},
        {u"01.03.2011", u"-1", false, u"28.02.2011"},
        {u"31.12.2011", u"31.12.2011", false, u"31.12.2011"},
        {u"31.12.2011", u"", true, u"31.12.2011"},
        {u"01.01.2011", u"31.03.2011", true, u"01.01.2011"},
        {u"", u"", false, u""},
        {u"01.01.2011", u"", true, u"01.01.2011"},
        {u"31.03.2011", u"", true, u"31.03.2011"},
        {u"01.04.2011", u"", false, u"01.04.2011"},
        {u"15.02.2011", u"-", true, u"31.12.2010"},
        {u"15.02.2011", u"+", true, u"01.04.2011"},
        {u"15.02.2012", u"+", false, u"15.02.2012"},
    };
    for (const BetweenCase& c : cases) {
        Text date(c.date);
        EXPECT_EQ(datebetween(date, c.mode), c.result) << ToUtf8(c.date) << " " << ToUtf8(c.mode);
        EXPECT_EQ(date, c.rewritten) << ToUtf8(c.date) << " " << ToUtf8(c.mode);
    }
    EXPECT_TRUE(shown.messages.empty());
}

TEST(DateBetween, ShowsWhatIsNoDate) {
    const test::MessageList shown;
    Text date = u"вчера";
    EXPECT_FALSE(datebetween(date, u"01.01.2011"));
    EXPECT_THAT(shown.messages,
                testing::ElementsAre(Message{u"Ошибка в функции datebetween", u"Type mismatch: вчера\r\n"}));
}

}  // namespace
}  // namespace tav
