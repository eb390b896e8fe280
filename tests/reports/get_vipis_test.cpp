#include "reports/get_vipis.h"

#include "reports/report_database.h"
#include "reports/statement_page.h"

namespace tav {
namespace {

using testing::HasSubstr;
using testing::Not;

class StatementReport : public test::ReportDatabase {
 protected:
    StatementReport() : ReportDatabase("statement.sql") {}
};

TEST_F(StatementReport, IsTheGoldenOne) {
    EXPECT_EQ(GetVipis(database_, 1, folder_ / u"out"), folder_ / u"out/vipis.doc");
    const std::string report = ReadFile(folder_ / u"out/vipis.doc");
    ExpectReport(folder_ / u"out/vipis.doc", "statement.html");
    EXPECT_EQ(test::Bytes(FromWindows1251(report)), report);
}

TEST_F(StatementReport, OfAnEmptyStatementHasNoAmounts) {
    ExpectReport(GetVipis(database_, 2, folder_ / u"out"), "statement_empty.txt", "statement.html");
}

TEST_F(StatementReport, ShowsTheChosenTaxpayer) {
    WriteSetting(u"NameINNKPP", u"ИП <Иванов>|500100732259|0");
    const std::string report = ToUtf8(FromWindows1251(ReadFile(GetVipis(database_, 1, folder_ / u"out"))));
    EXPECT_THAT(report, HasSubstr(">500100732259</td>"));
    EXPECT_THAT(report, HasSubstr(">0</td>"));
    EXPECT_THAT(report, HasSubstr(">ИП &lt;Иванов&gt;</td>"));
    EXPECT_THAT(report, Not(HasSubstr("7701234567")));
}

TEST_F(StatementReport, TakesAnotherNameBesideAnExistingOne) {
    EXPECT_EQ(GetVipis(database_, 1, folder_.path()), folder_ / u"vipis.doc");
    EXPECT_EQ(GetVipis(database_, 2, folder_.path()), folder_ / u"vipis07.doc");
    EXPECT_EQ(GetVipis(database_, 1, folder_.path()), folder_ / u"vipis07.doc");
    EXPECT_THAT(ListFiles(folder_.path(), u".doc"), testing::ElementsAre(u"vipis.doc", u"vipis07.doc"));
}

TEST_F(StatementReport, RefusesANumberThatIsNoStatement) {
    {
        Connection connection;
        connection.Open(ConnectionString(database_));
        connection.Execute(u"insert into tav_operations_header (id,filename,h1) values (3,'act.rtf','1')");
    }
    EXPECT_EQ(GetVipis(database_, 3, folder_.path()), u"");
    EXPECT_EQ(GetVipis(database_, 4, folder_.path()), u"");
    const Text title = u"Ошибка в функции GetVipis";
    EXPECT_THAT(shown_.messages,
                testing::ElementsAre(Message{title, u"Выписка с номером 3 в базе данных не найдена\r\n"},
                                     Message{title, u"Выписка с номером 4 в базе данных не найдена\r\n"}));
    EXPECT_TRUE(ListFiles(folder_.path(), u".doc").empty());
}

TEST_F(StatementReport, NamesTheDatabaseSomebodyElseHolds) {
    Connection holder;
    holder.Open(ConnectionString(database_));
    EXPECT_EQ(GetVipis(database_, 1, folder_.path()), u"");
    ASSERT_EQ(shown_.messages.size(), 1U);
    EXPECT_EQ(shown_.messages[0].title, u"Ошибка в функции GetVipis");
    EXPECT_THAT(ToUtf8(shown_.messages[0].text), HasSubstr("PlX_Base.mdb"));
}

TEST_F(StatementReport, JoinsTheOperationsOfSeveralHeaders) {
    Connection connection;
    connection.OpenForReading(ConnectionString(database_));
    Recordset headers = connection.Execute(u"select * from tav_operations_header order by perb");
    const Text page = StatementPage(connection, headers, nullptr);
    EXPECT_TRUE(headers.Eof());
    EXPECT_THAT(ToUtf8(page), HasSubstr("01.01.2011-30.06.2011"));
    EXPECT_THAT(ToUtf8(page), HasSubstr("18210101011011000110"));
}

}  // namespace
}  // namespace tav
