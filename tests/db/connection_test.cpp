#include "db/connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/failure.h"
#include "common/regional.h"
#include "db/empty_database.h"
#include "platform/files.h"
#include "support/support.h"

namespace tav {
namespace {

template <class Body>
std::string FailureOf(Body body) {
    try {
        body();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "no failure";
}

// A new database, open.
class ConnectionTest : public testing::Test {
 protected:
    ConnectionTest() : path_(folder_ / u"base.mdb") {
        CreateDatabase(path_);
        connection_.Open(ConnectionString(path_));
    }

    Text First(const SqlText& sql) { return ValueText(connection_.Execute(sql).Field(0)); }
    Text First(TextView sql) { return First(SqlText(sql)); }
    Text Count(TextView where) { return First(Text(u"select count(*) from tav_operations ").append(where)); }

    SqlText Line(int id, TextView operation, TextView kind) {
        SqlText sql(u"insert into tav_operations (id,p3,p9) values (");
        return sql.Number(id).Fixed(u",'").Value(operation).Fixed(u"','").Value(kind).Fixed(u"')");
    }
    void AddLines() {
        for (int i = 0; i < 60; ++i) {
            connection_.Execute(
                Line(i / 10, Text(u"Операция ").append(Digits(i % 6)), i % 2 ? u"пеня" : u"налог"));
        }
    }

    test::TempFolder folder_;
    test::MessageList messages_;
    Text path_;
    Connection connection_;
};

TEST_F(ConnectionTest, ValuesComeBackAsTheyAre) {
    const TextView values[] = {u"",
                               u"  both ends  ",
                               u"100%_[a]",
                               u"\"quoted\"; -- #1/1/2011#",
                               u"it's ''quoted'' '",
                               u"x'); delete from tav_operations; --",
                               u"Ёлка \u00A0№ 5"};
    for (const TextView value : values) {
        connection_.Execute(Line(7, value, u"налог"));
        EXPECT_EQ(First(u"select p3 from tav_operations"), value);
        SqlText remove(u"delete from tav_operations where p3='");
        connection_.Execute(remove.Value(value).Fixed(u"'"));
        EXPECT_EQ(Count(u""), u"0");
    }
    connection_.Execute(u"insert into tav_operations (id,p3) values (1,'it''s')");
    EXPECT_EQ(First(u"select p3 from tav_operations where p3='it''s'"), u"it's");
}

TEST_F(ConnectionTest, AnUpdateOfTheSearchedColumnsMeetsEachRowOnce) {
    AddLines();
    connection_.Execute(u"update tav_operations set id=id+1");
    EXPECT_EQ(First(u"select max(id) from tav_operations"), u"6");
    connection_.Execute(u"update tav_operations set id=id+1 where id>=3");
    EXPECT_EQ(Count(u"where id=3"), u"0");
    EXPECT_EQ(Count(u"where id=7"), u"10");
    connection_.Execute(
        u"update tav_operations set p9='пеня', p3='Операция 0' where p3='операция 1' and p9='пеня'");
    EXPECT_EQ(Count(u"where p3='Операция 0' and p9='пеня'"), u"10");
    EXPECT_EQ(Count(u"where p3='Операция 1' and p9='пеня'"), u"0");
}

TEST_F(ConnectionTest, SearchesSeeWhatStatementsChanged) {
    const TextView where = u"where p3='ОПЕРАЦИЯ 4' and p9='налог'";
    AddLines();
    EXPECT_EQ(Count(where), u"10");
    connection_.Execute(Line(9, u"операция 4  ", u"Налог"));
    EXPECT_EQ(Count(where), u"11");
    connection_.Execute(u"update tav_operations set p9='штраф' where id=9");
    EXPECT_EQ(Count(where), u"10");
    connection_.Execute(u"delete from tav_operations where p3='операция 4' and id<3");
    EXPECT_EQ(Count(where), u"5");
    connection_.Execute(u"insert into tav_operations (id,p3,p9) select id, p3, p9 from tav_operations");
    EXPECT_EQ(Count(where), u"10");
}

// The second of two rows breaks a rule: the first one is taken back, in the file and in what searches know.
TEST_F(ConnectionTest, AFailedStatementLeavesTheFileAsItWas) {
    connection_.Execute(u"insert into tav_operations_type (tid,tname,tpayment) values (1,'A','x')");
    connection_.Execute(u"insert into tav_operations_type (tid,tname,tpayment) values (2,'B','x')");
    EXPECT_EQ(First(u"select tid from tav_operations_type where tname='a' and tpayment='x'"), u"1");
    connection_.Close();
    const std::string before = ReadFile(path_);
    connection_.Open(ConnectionString(path_));
    EXPECT_NE(FailureOf([&] { connection_.Execute(u"update tav_operations_type set tid=7, tname='C'"); }),
              "no failure");
    EXPECT_EQ(First(u"select tid from tav_operations_type where tname='a' and tpayment='x'"), u"1");
    EXPECT_EQ(First(u"select count(*) from tav_operations_type where tname='c' and tpayment='x'"), u"0");
    connection_.Close();
    EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(ConnectionTest, WhatWasExecutedStays) {
    AddLines();
    EXPECT_NE(FailureOf([&] { connection_.Execute(u"select nothing from tav_operations"); }), "no failure");
    connection_.Close();
    Connection reader;
    reader.OpenForReading(ConnectionString(path_));
    EXPECT_EQ(reader.Execute(u"select id from tav_operations").RecordCount(), 60);
}

TEST_F(ConnectionTest, AReaderChangesNothing) {
    connection_.Close();
    Connection reader;
    reader.OpenForReading(ConnectionString(path_));
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
    EXPECT_NE(FailureOf([&] { connection_.Open(ConnectionString(folder_ / u"none.mdb")); }), "no failure");
    connection_.Open(ConnectionString(path_));
    EXPECT_EQ(First(u"select count(*) from tav_acts"), u"0");
}

TEST_F(ConnectionTest, FieldsOfARecordset) {
    AddLines();
    Recordset rows =
        connection_.Execute(u"select id as A, p3 as a, max(p9) from tav_operations group by id, p3");
    EXPECT_EQ(ValueText(rows.Field(u"a")), u"0");
    EXPECT_EQ(ValueText(rows.Field(u"Expr1002")), u"налог");
    EXPECT_EQ(FailureOf([&] { rows.Field(u"b"); }),
              "Item cannot be found in the collection corresponding to the requested name or ordinal.");
    while (!rows.Eof()) rows.MoveNext();
    EXPECT_NE(FailureOf([&] { rows.Field(0); }), "no failure");
}

// More shapes than are kept prepared, each used again.
TEST_F(ConnectionTest, ManyShapes) {
    AddLines();
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 300; ++i) {
            EXPECT_EQ(First(Text(u"select count(*) as n").append(Digits(i)).append(u" from tav_operations")),
                      u"60");
        }
    }
}

}  // namespace
}  // namespace tav
