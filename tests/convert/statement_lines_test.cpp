#include "convert/statement_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/failure.h"
#include "common/get_next.h"
#include "support/support.h"

namespace tav {
namespace {

// What the lines, separated by "\n", give, with "\n" for each line end and without indentation.
std::string Parts(TextView lines) {
    const std::string bytes = test::Bytes(lines);
    std::string_view rest = bytes;
    StatementLines reader;
    while (!rest.empty()) reader.Add(GetNext(rest, "\n"));
    std::string output;
    for (const char c : reader.TakeOutput()) {
        if (c != '\t' && c != '\r') output += c;
    }
    return output;
}

void Expect(TextView lines, TextView parts) {
    EXPECT_EQ(Parts(lines), test::Bytes(parts)) << ToUtf8(lines);
}

Text Repeat(TextView text, int times) {
    Text out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

const Text kOpenStatement = Repeat(u"##v<h@@>\n", 13) + Repeat(u"##<p01>title\n", 4);
const Text kStatementOpened = [] {
    Text out = u"<part type=\"выписка\">\n<head>\n";
    for (int i = 1; i <= 13; ++i) out += u"<h" + Digits(i, 2) + u"></h" + Digits(i, 2) + u">\n";
    return out + u"</head>\n<body>\n<row>\n";
}();

void ExpectBody(TextView lines, TextView body) {
    Expect(kOpenStatement + Text(lines), kStatementOpened + Text(body));
}

// As many header lines of an act, of which none carries a value but the first.
Text ActLines(int count) {
    return Repeat(u"##a<h@@>\n", count);
}
const Text kActOpened = u"<part type=\"акт\">\n<head>\n<h04></h04>\n";
const Text kActOfLines = kActOpened + u"<h05></h05>\n";  // from five lines on

TEST(StatementLines, PassesOverOtherLines) {
    Expect(u"text\n\n##\n##p\n##pxyz\n##|612 text\n##x<p01>\n##<p01>no body\n ##v<h@@>a\n#v<h@@>", u"");
}

TEST(StatementLines, NumbersStatementHeaders) {
    Expect(u"##v<h@@>a@@b\n##v<h@@>\n##v\n",
           u"<part type=\"выписка\">\n<head>\n<h01>a01b</h01>\n<h02></h02>\n<></>\n");
    ExpectBody(u"", u"");
    // Cells count a header down that is not complete.
    Expect(u"##v<h@@>a\n##v<h@@>b\n##<p01>x\n##<p01>y\n##v<h@@>c",
           u"<part type=\"выписка\">\n<head>\n<h01>a</h01>\n<h02>b</h02>\n<row>\n"
           u"<part type=\"выписка\">\n<head>\n<h01>c</h01>\n");
}

TEST(StatementLines, NumbersLaterHeadersFromFiveOn) {
    Expect(Repeat(u"##v<h@@>\n", 13) + u"##v<h@@>late\n##v<h@@>later",
           kStatementOpened.substr(0, kStatementOpened.size() - 6) +
               u"</body>\n<h05>late</h05>\n</body>\n<h06>later</h06>\n");
}

TEST(StatementLines, LaysOutRows) {
    ExpectBody(u"##<p01>a\n##<p14>b\n##<p01>c\n##<p14>d\n",
               u"<p01>a</p01>\n<p14>b</p14>\n</row>\n<row>\n<p01>c</p01>\n<p14>d</p14>\n");
    ExpectBody(u"##<p14>a\n##<p04>b\n##<p04>c\n##<p14>d\n##<p14>e",
               u"<p14>a</p14>\n<p04>b</p04>\n</row>\n<row>\n<p04>c</p04>\n<p14>d</p14>\n</"
               u"row>\n<row>\n<p14>e</p14>\n");
    // A second line of column 04 is written whatever its value; nothing opens the next row before a cell
    // comes.
    ExpectBody(u"##<p14>a\n##<p04>4\n##<p00>Д\n", u"<p14>a</p14>\n<p04>4</p04>\n</row>\n</body>\n</part>\n");
    // A header or act line takes the opening of the next row back.
    ExpectBody(
        u"##<p14>a\n##<p04>b\n##a<h@@>*\n##<p01>c\n",
        u"<p14>a</p14>\n<p04>b</p04>\n</row>\n<part type=\"акт\">\n<head>\n<h04>*</h04>\n<p01>c</p01>\n");
}

TEST(StatementLines, DropsTheNumberingLine) {
    ExpectBody(u"##<p05>5\n##<p05>05\n##<p05> 0005 \n##<p10>10\n", u"");
    ExpectBody(u"##<p05>5.00\n##<p05>5,00\n##<p05>6\n##<p05>\n##<p05>-5\n##<p05>5 5\n##<p10>1\n##<p05>5a\n",
               u"<p05>5.00</p05>\n<p05>5,00</p05>\n<p05>6</p05>\n<p05></p05>\n<p05>-5</p05>\n<p05>5 5</p05>\n"
               u"<p10>1</p10>\n<p05>5a</p05>\n");
}

TEST(StatementLines, ClosesTheBodyAtTheClosingText) {
    ExpectBody(u"##<p00>Всего\n##<p00>\n##<p01>a\n##<p00>Дата\n##<p01>b\n##<p00>Д",
               u"<p01>a</p01>\n</body>\n</part>\n");
    ExpectBody(u"##<p14>a\n##<p00>Всего\n##<p01>b", u"<p14>a</p14>\n</row>\n<row>\n<p01>b</p01>\n");
}

TEST(StatementLines, ReadsActHeaders) {
    Expect(ActLines(1), kActOpened);
    Expect(u"##a<h@@>7701\n\n##a<h@@>\n##a<h@@>ООО «А» 7701234567/ 770101001/ 2\n##a<h@@>\n##a<h@@>ИФНС\n",
           u"<part type=\"акт\">\n<head>\n<h04>7701</h04>\n<h03>ООО «А»</h03>\n<h01>7701234567</h01>\n"
           u"<h02>770101001/ 2</h02>\n<h05>ИФНС</h05>\n");
    Expect(u"##a<h@@>Выписка операций по расчету с бюджетом\n", u"");
    Expect(u"##a<h@@>Выписка операций по расчету с бюджетом.\n",
           u"<part type=\"акт\">\n<head>\n<h04>Выписка операций по расчету с бюджетом.</h04>\n");
    // An asterisk starts the act anew.
    Expect(ActLines(3) + u"##a<h@@>*)\n##a<h@@>b\n",
           kActOpened + u"<part type=\"акт\">\n<head>\n<h04>b</h04>\n");
    // The thirteenth line: the kind of tax, from character 30 of at least 31.
    const Text tag = u"##a<h@@>";
    Expect(ActLines(12) + tag + Text(21, u'x') + u"ab\n", kActOfLines + u"<h08>ab</h08>\n");
    Expect(ActLines(12) + tag + Text(21, u'x') + u"a\n", kActOfLines);
    Expect(ActLines(12) + tag + u"произвели" + Text(30, u'x') + u"\n" + tag + Text(21, u'x') + u"ab\n",
           kActOfLines + u"<h08>ab</h08>\n");
}

TEST(StatementLines, ReadsActTrailers) {
    Expect(ActLines(7) + u"1234567890123\n12345678901234\nна 01.04.2011 г.\n",
           kActOfLines + u"<h12>2345678901</h12>\n<h12>01.04.2011</h12>\n");
    Expect(ActLines(12) + Text(31, u'x') + u"\nx01.01.2011 г.  по 31.03.2011 г.\n" +
               u"с 01.01.2011 г. -- 31.03.2011 г., до 02.02.2011 г.\n",
           kActOfLines + u"<h13>01.01.2011</h13>\n<perb>01.01.2011</perb>\n<pere>31.03.2011</pere>\n" +
               u"<h13>31.03.2011</h13>\n<perb>31.03.2011</perb>\n<pere>02.02.2011</pere>\n");
    // Behind the header, lines are by turns the territory code and (after a slash) the tax code; a line too
    // short for its field still takes its turn.
    const Text taxpayer = ActLines(2) + u"##a<h@@>ООО «А» 7701234567/ 7\n" + ActLines(10);
    const Text opened =
        kActOpened + u"<h03>ООО «А»</h03>\n<h01>7701234567</h01>\n<h02>7</h02>\n<h05></h05>\n";
    const Text code = u"18210101011011000110";
    const Text body = u"</head>\n<body>\n";
    Expect(taxpayer + u"x" + code + u"\nx45286560000\n",
           opened + u"<h07>" + code + u"</h07>\n<h10>45286560000</h10>\n" + body);
    Expect(taxpayer + code + u"\nx45286560000\n", opened + u"<h10>45286560000</h10>\n" + body);
    Expect(ActLines(13) + u"45286560000\nx" + code + u"\n", kActOfLines + u"<h07>" + code + u"</h07>\n");
}

TEST(StatementLines, ReadsActRows) {
    Expect(
        ActLines(13) + u"##a<p@@@@>1.5\n##a<p@@@@>\n##a<p@@@@>a>\n##a<p@@@@>@@@@\n##a\n",
        kActOfLines +
            u"<p0011>1.5</p0011>\n<p1111>0.00</p1111>\n<p1112>a>0.00</p1112>\n<p1113>1113</p1113>\n<></>\n");
    const std::string all = Parts(ActLines(13) + Repeat(u"##a<p@@@@>\n", 103));
    EXPECT_TRUE(all.ends_with("<p0044>0.00</p0044>\n<p0045>0.00</p0045>\n</body>\n</part>\n"));
}

TEST(StatementLines, RefusesLinesThatDoNotFit) {
    const struct {
        Text lines;
        RunTimeError error;
    } cases[] = {
        {u"##a<p@@@@>1", RunTimeError::SubscriptOutOfRange},
        {ActLines(12) + u"##a<p@@@@>1", RunTimeError::SubscriptOutOfRange},
        {ActLines(2) + u"##a<h@@>" + Text(32'760, u'x') + u"/ ", RunTimeError::Overflow},
        {ActLines(2) + u"##a<h@@>1234567890/ ", RunTimeError::InvalidProcedureCall},
        {kOpenStatement + u"##<x", RunTimeError::TypeMismatch},
    };
    for (const auto& c : cases) {
        try {
            ADD_FAILURE() << Parts(c.lines);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.error(), c.error);
        }
    }
    EXPECT_NO_THROW(Parts(ActLines(2) + u"##a<h@@>" + Text(32'758, u'x') + u"/ "));
    EXPECT_NO_THROW(Parts(ActLines(2) + u"##a<h@@>12345678901/ "));
}

}  // namespace
}  // namespace tav
