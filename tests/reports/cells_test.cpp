#include "reports/cells.h"

#include <gmock/gmock.h>

#include "common/failure.h"

namespace tav {
namespace {

// The state of the cells outlives every call: each test begins with none.
class Cells : public testing::Test {
 protected:
    Cells() { GetHS(u"td", {u"#al", u"#b0", u"#u0"}); }
};

TEST_F(Cells, BeginWithTheAlignmentSetLast) {
    EXPECT_EQ(GetHS(u"td", {u""}), u"<td align=left>&nbsp;</td>\r\n");
    EXPECT_EQ(GetHS(u"td", {}), u"");
}

TEST_F(Cells, TakeTheCodesBehindThem) {
    EXPECT_EQ(GetHS(u"td", {u"A", u"#c2", u"#ac"}), u"<td colspan=2 align=center>A</td>\r\n");
    EXPECT_EQ(GetHS(u"td", {u"B"}), u"<td align=center>B</td>\r\n");
    EXPECT_EQ(GetHS(u"td", {u"Дата записи", u"#w7%", u"#r2", u"x", u"#h20", u"#ar"}),
              u"<td rowspan=2 width=7% align=right>Дата записи</td>\r\n"
              u"<td height=20 align=right>x</td>\r\n");
}

TEST_F(Cells, AreWalkedBackwards) {
    // Each alignment acts on the cells before it, up to the next code.
    EXPECT_EQ(GetHS(u"td", {u"1", u"#ac", u"2", u"#al", u"3", u"4", u"#ar"}),
              u"<td align=center>1</td>\r\n<td align=left>2</td>\r\n<td align=right>3</td>\r\n"
              u"<td align=right>4</td>\r\n");
    EXPECT_EQ(GetHS(u"td", {u"5"}), u"<td align=center>5</td>\r\n");
}

TEST_F(Cells, KeepAlignmentOnUnknownLetters) {
    EXPECT_EQ(GetHS(u"td", {u"1", u"#ax"}), u"<td align=left>1</td>\r\n");
}

TEST_F(Cells, RuleAWholeRow) {
    EXPECT_EQ(GetHS(u"td", {u"", u"5,00", u"#l2", u"#b1", u"#u2"}),
              u"<td align=left style=\"border-top-width:2px; \">&nbsp;</td>\r\n"
              u"<td style=\"border-top-width:2px; border-left-width:2px;\" align=left><b>5,00</b></td>\r\n");
    EXPECT_EQ(GetHS(u"tr", {u"row", u"#b0", u"#u0"}), u"<tr>row</tr>\r\n");
    EXPECT_EQ(GetHS(u"td", {u"1"}), u"<td align=left>1</td>\r\n");
}

TEST_F(Cells, RuleRowsToo) {
    EXPECT_EQ(GetHS(u"tr", {u"row", u"#b1", u"#u3"}),
              u"<tr style=\"border-top-width:3px; \"><b>row</b></tr>\r\n");
}

TEST_F(Cells, DropCodesWithoutAContentBeforeThem) {
    EXPECT_EQ(GetHS(u"td", {u"#c2", u"A", u"#r3"}), u"<td rowspan=3 align=left>A</td>\r\n");
    EXPECT_EQ(GetHS(u"td", {u"B"}), u"<td align=left>B</td>\r\n");
}

TEST_F(Cells, RefuseFlagsThatAreNoNumbers) {
    EXPECT_THROW(GetHS(u"td", {u"A", u"#bx"}), Failure);
    EXPECT_THROW(GetHS(u"td", {u"A", u"#u99999"}), Failure);
}

TEST(HtmlText, ShowsATextAsItIs) {
    EXPECT_EQ(HtmlText(u"ООО \"Рога & <копыта>\""), u"ООО &quot;Рога &amp; &lt;копыта&gt;&quot;");
    EXPECT_EQ(HtmlText(u"#b1 #b2"), u"&#35;b1 #b2");
    EXPECT_EQ(HtmlText(u""), u"");
}

}  // namespace
}  // namespace tav
