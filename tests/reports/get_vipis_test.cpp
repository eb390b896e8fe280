#include "reports/get_vipis.h"

#include <gmock/gmock.h>

#include "common/windows1251.h"
#include "db/connection.h"
#include "db/empty_database.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "reports/cells.h"
#include "reports/statement_page.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav {
namespace {

using testing::HasSubstr;
using testing::Not;

class StatementReport : public testing::Test {
 protected:
    StatementReport() {
        SetClock([] { return LocalTime{{2011, 5, 9}, {14, 30, 7}}; });
        // Reports before this one leave the alignment of their last cells behind.
        GetHS(u"td", {u"#al", u"#b0", u"#u0"});
        CreateDatabase(database_);
        Connection connection;
        connection.Open(ConnectionString(database_));
        for (const TextView statement : kContents) connection.Execute(statement);
        connection.Close();
    }
    ~StatementReport() override { SetClock(nullptr); }

    std::string Report(std::int32_t id) const { return ReadFile(GetVipis(database_, id, folder_ / u"out")); }

    // Statement 1 has balances of all three kinds and operations of every sort, statement 2 neither.
    static constexpr TextView kContents[] = {
        u"insert into tav_operations_header (id,filename,h1,h2,h3,h6,h7,h8,h10,h11,perb,pere,vid) values "
        u"(1,'a.rtf','7701234567','770101001','ООО \"Рога & Копыта\"','x','18210101011011000110','Налог на "
        u"прибыль','45286552000','рубль','01.01.2011','31.03.2011','1')",
        u"insert into tav_operations_header (id,filename,h1,h2,h3,h6,h7,h8,h10,h11,perb,pere) values "
        u"(2,'b.rtf','1','2','#b <i>','x','3','4','5','6','01.04.2011','30.06.2011')",
        u"insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','налог','-1000,5')",
        u"insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','пеня','20')",
        u"insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','штраф','0')",
        u"insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.04.2011','налог','77777')",
        u"insert into tav_operations (id,p1,p2,p3,p6,p7,p9,p10,p14) values (1,'15.01.2011','28.01.2011',"
        u"'Начислено','17','14.01.2011','налог','1234567,8','-1235568,3')",
        u"insert into tav_operations (id,p1,p2,p3,p6,p7,p9,p11,p14) values (1,'02.02.2011','','Уплата "
        u"<срочно>',"
        u"'18','01.02.2011','налог','2000000','764431,7')",
        u"insert into tav_operations (id,p1,p3,p9,p10,p11,p14) values (1,'03.02.2011','Пеня','пеня','35,25',"
        u"'5','764401,45')",
        u"insert into tav_operations (id,p1,p3,p9,p10,p11,p14) values "
        u"(1,'04.02.2011','Прочее','проценты','1','0',"
        u"'764400,45')",
    };

    const test::OwnSettings settings_;
    const test::TempFolder folder_;
    const Text database_ = folder_ / u"PlX_Base.mdb";
    test::MessageList shown_;
};

TEST_F(StatementReport, IsTheGoldenOne) {
    EXPECT_EQ(GetVipis(database_, 1, folder_ / u"out"), folder_ / u"out/vipis.doc");
    const std::string report = ReadFile(folder_ / u"out/vipis.doc");
    // Kept as UTF-8, for those who read it.
    test::ExpectGolden("reports/golden/statement.html", ToUtf8(FromWindows1251(report)));
    EXPECT_EQ(test::Bytes(FromWindows1251(report)), report);
    EXPECT_TRUE(shown_.messages.empty());
}

TEST_F(StatementReport, OfAnEmptyStatementHasNoAmounts) {
    test::ExpectGolden("reports/golden/statement_empty.html", ToUtf8(FromWindows1251(Report(2))));
}

TEST_F(StatementReport, ShowsTheChosenTaxpayer) {
    WriteSetting(u"NameINNKPP", u"ИП <Иванов>|500100732259|0");
    const std::string report = ToUtf8(FromWindows1251(Report(1)));
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
