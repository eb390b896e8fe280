#include "db/connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "common/regional.h"
#include "db/empty_database.h"
#include "db/patience.h"
#include "platform/files.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

using test::FailureOf;

// A new database, open.
class ConnectionTest : public testing::Test {
 protected:
    ConnectionTest() : path_(folder_ / u"base.mdb") {
        CreateDatabase(path_);
        connection_.Open(ConnectionString(path_));
    }

    Text First(TextView sql) { return ValueText(connection_.Execute(sql).Field(0)); }

    SqlText Line(TextView operation) {
        SqlText sql(u"insert into tav_operations (id,p3) values (1,'");
        return sql.Value(operation).Fixed(u"')");
    }
    void AddLines(int count) {
        for (int i = 0; i < count; ++i) connection_.Execute(Line(u"Операция"));
    }

    test::TempFolder folder_;
    test::MessageList messages_;
    Text path_;
    Connection connection_;
};

TEST_F(ConnectionTest, ValuesComeBackAsTheyAre) {
    for (const TextView value :
         {u"", u"  both ends  ", u"100%_[a]", u"\"quoted\"; -- #1/1/2011#", u"it's ''quoted'' '",
          u"x'); delete from tav_operations; --", u"Ёлка \u00A0№ 5"}) {
        connection_.Execute(Line(value));
        EXPECT_EQ(First(u"select p3 from tav_operations"), value);
        SqlText remove(u"delete from tav_operations where p3='");
        connection_.Execute(remove.Value(value).Fixed(u"'"));
        EXPECT_EQ(First(u"select count(*) from tav_operations"), u"0");
    }
    connection_.Execute(u"insert into tav_operations (id,p3) values (1,'it''s')");
    EXPECT_EQ(First(u"select p3 from tav_operations where p3='it''s'"), u"it's");
}

// The second of two rows breaks a rule: the first one is taken back, in the file and in what searches know.
TEST_F(ConnectionTest, AFailedStatementLeavesTheFileAsItWas) {
    for (const TextView row : {u"1,'A','x'", u"2,'B','x'"}) {
        connection_.Execute(
            Text(u"insert into tav_operations_type (tid,tname,tpayment) values (").append(row).append(u")"));
    }
    const TextView search = u"select tid from tav_operations_type where tname='a' and tpayment='x'";
    EXPECT_EQ(First(search), u"1");
    connection_.Close();
    const std::string before = ReadFile(path_);
    connection_.Open(ConnectionString(path_));
    EXPECT_NE(FailureOf([&] { connection_.Execute(u"update tav_operations_type set tid=7, tname='C'"); }),
              "");
    EXPECT_EQ(First(search), u"1");
    EXPECT_EQ(First(u"select count(*) from tav_operations_type where tname='c' and tpayment='x'"), u"0");
    connection_.Close();
    EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(ConnectionTest, AReaderSeesWhatWasExecutedAndChangesNothing) {
    AddLines(60);
    EXPECT_NE(FailureOf([&] { connection_.Execute(u"select nothing from tav_operations"); }), "");
    connection_.Close();
    Connection reader;
    reader.OpenForReading(ConnectionString(path_));
    EXPECT_EQ(reader.Execute(u"select id from tav_operations").RecordCount(), 60);
    EXPECT_EQ(FailureOf([&] { reader.Execute(u"delete from tav_operations"); }),
              "Operation must use an updateable query. (" + ToUtf8(path_) + ")");
    EXPECT_EQ(reader.RoomLeft(), 64U << 20);  // more is not counted
}

TEST_F(ConnectionTest, OpenAndClosed) {
    EXPECT_EQ(FailureOf([&] { connection_.Open(ConnectionString(path_)); }),
              "Operation is not allowed when the object is open.");
    connection_.Close();
    EXPECT_EQ(FailureOf([&] { connection_.Execute(u"select id from tav_acts"); }),
              "Operation is not allowed when the object is closed.");
    EXPECT_THAT(FailureOf([&] { connection_.Open(u"Provider=Other;Data Source=x"); }),
                testing::StartsWith("Provider cannot be found. It may not be properly installed."));
    EXPECT_NE(FailureOf([&] { connection_.Open(ConnectionString(folder_ / u"none.mdb")); }), "");
    connection_.Open(ConnectionString(path_));
    EXPECT_EQ(First(u"select count(*) from tav_acts"), u"0");
}

TEST_F(ConnectionTest, WaitsAWhileForWhoeverHoldsTheFile) {
    std::thread holder([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        connection_.Close();
    });
    const DatabasePatience patience;
    Connection second;
    EXPECT_NO_THROW(second.Open(ConnectionString(path_)));
    holder.join();
}

TEST_F(ConnectionTest, FieldsOfARecordset) {
    AddLines(1);
    Recordset rows =
        connection_.Execute(u"select id as A, p3 as a, max(p9) from tav_operations group by id, p3");
    EXPECT_EQ(ValueText(rows.Field(u"a")), u"1");
    EXPECT_EQ(ValueText(rows.Field(u"Expr1002")), u"");
    EXPECT_EQ(FailureOf([&] { rows.Field(u"b"); }),
              "Item cannot be found in the collection corresponding to the requested name or ordinal.");
    rows.MoveNext();
    EXPECT_NE(FailureOf([&] { rows.Field(0); }), "");
}

// More shapes than are kept prepared, each used again.
TEST_F(ConnectionTest, ManyShapes) {
    for (int i = 0; i < 600; ++i) {
        EXPECT_EQ(First(u"select count(*) as n" + Digits(i % 300) + u" from tav_operations"), u"0");
    }
}

}  // namespace
}  // namespace tav
